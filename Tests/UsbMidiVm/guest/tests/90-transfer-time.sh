# How long a transfer takes, beside the sum of its pauses and beside ALSA's own program sending
# the same messages with the same pause after each. Printed, not judged.
make_gadget
make_image 100000
start_device --mode bootloader
expect_status 0 -SILENT
until_true test -e $work/flash.hex
stop_device
until_true is_gone

# Lines "milliseconds in F0 ..."; of the messages from the first write on, those with command
# C7 are followed by a pause, packed into seven bits at its place in the envelope.
awk '$2 == "in" && $18 ~ /^4[67]$/ { writing = 1 } writing && $2 == "in"' $work/trace >$work/sent
sed 's/^.* in //' $work/sent | tr -d ' \n' | xxd -r -p >$work/sent.syx

plug_in
until_true is_listed
amidi -p "$(device_end)" -r $work/received.syx &
witness=$!
until_true is_read "$(device_end)"
read -r started _ </proc/uptime
amidi -p "$(port)" -s $work/sent.syx -i 5
read -r ended _ </proc/uptime
kill -INT $witness
wait $witness || true
awk -v amidi="$started $ended" '
  NR == 1 { first = $1 }
  { last = $1 }
  $18 == "47" { pauses += 5 }
  END {
    split(amidi, time)
    printf "== transfer of %d messages: %d ms, %.2f times its pauses of %d ms; amidi with %d pauses: %d ms\n",
      NR, last - first, (last - first) / pauses, pauses, NR, (time[2] - time[1]) * 1000
  }' $work/sent
