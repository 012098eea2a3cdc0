# The whole road; the device leaves the bus and comes back each time it changes its mode.
make_gadget
make_image 60000
start_device
expect_status 5 -RETURN_UPDATE_MODE_STATUS
expect_status 0 -SILENT
until_true has_status 3
expect_status 0 -SILENT
until_true has_status 4
[ "$(grep -c "port leaves" $work/trace)" -eq 2 ] || fail "the device did not leave the bus twice"
stop_device
expect_flash_equals_image
