# A device that comes back under another card number is found again.
make_gadget
make_image
start_device
first=$(port)
expect_status 5 -RETURN_UPDATE_MODE_STATUS
stop_device
until_true is_gone
insmod /modules/snd-dummy.ko
start_device
[ "$(port)" != "$first" ] || fail "the card has its old number $first"
expect_status 5 -RETURN_UPDATE_MODE_STATUS
stop_device
