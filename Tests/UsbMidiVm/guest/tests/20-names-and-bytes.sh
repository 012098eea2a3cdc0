# ALSA's own program sees the names and the bytes that the updater sees and sends.
make_gadget
make_image
plug_in
until_true is_listed
amidi -l
amidi -l | grep -q "^IO  $(port)  Tessel MIDI 1$" || fail "the port has another name"

# The device's end of the cable: what the updater asks a device that does not answer.
amidi -p "$(device_end)" -r $work/received.syx &
witness=$!
until_true is_read "$(device_end)"
expect_status 1 -RETURN_UPDATE_MODE_STATUS
kill -INT $witness
wait $witness || true
received=$(od -An -v -tx1 $work/received.syx | tr -d '\n')
query=' f0 00 00 17 70 f7'
wanted=
for attempt in 1 2 3 4 5 6; do wanted=$wanted$query; done  # Five for the firmware, one for the bootloader.
[ "$received" = "$wanted" ] || fail "the device got$received"
plug_out
until_true is_gone

# The computer's end: the same question, and the answer as the device's record has it.
start_device
amidi -p "$(port)" -S "$query" -r $work/answer.syx -t 2
stop_device
answer=$(od -An -v -tx1 $work/answer.syx | tr -d '\n' | tr a-f A-F)
[ -n "$answer" ] && grep -q " out$answer\$" $work/trace || { cat $work/trace; fail "the answer was$answer"; }
