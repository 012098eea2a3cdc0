# The message that restarts the device counts as sent, although the device goes as soon as it
# has the last byte.
make_gadget
make_image
for round in 1 2 3 4 5; do
  start_device --restart-ms 0
  expect_status 0 -SILENT
  expect_record "Device state 6"
  ! grep -q "Device state 4" $work/log || fail "the switch counts as failed"
  stop_device
  until_true is_gone
done
