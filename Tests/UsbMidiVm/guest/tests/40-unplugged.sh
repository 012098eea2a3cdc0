# Unplugged in the middle of a transfer; with the device back, the next run succeeds.
make_gadget
make_image
start_device --mode bootloader --fault unplug@write#40:1000
expect_status 0 -SILENT
expect_record "Update failed"
[ ! -e $work/flash.hex ] || fail "the device took an unfinished update"
until_true is_listed
expect_status 0 -SILENT
until_true has_status 4
stop_device
expect_flash_equals_image
