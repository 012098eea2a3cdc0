# A device with two cables is ambiguous, and a record names both ports.
make_gadget Tessel 2
make_image
plug_in
until_true is_listed
amidi -l
expect_status 1 -RETURN_UPDATE_MODE_STATUS
expect_record "Tessel MIDI 1.*Tessel MIDI 2"
