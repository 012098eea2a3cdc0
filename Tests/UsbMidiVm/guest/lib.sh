# What the tests share. A test is run by "sh -eu" with this before it.

gadget=/sys/kernel/config/usb_gadget/tessel
work=/tmp/work
image=$work/fw.vbin
hardware_id=0x31534C54

# A USB device with one MIDI function, not plugged in.
make_gadget() {  # [product [number of cables]]
  mkdir -p $gadget/strings/0x409 $gadget/configs/c.1 $gadget/functions/midi.0
  echo 0x1d6b >$gadget/idVendor
  echo 0x0104 >$gadget/idProduct
  echo "${1:-Tessel}" >$gadget/strings/0x409/product
  echo device >$gadget/functions/midi.0/id
  echo "${2:-1}" >$gadget/functions/midi.0/in_ports
  echo "${2:-1}" >$gadget/functions/midi.0/out_ports
  ln -s $gadget/functions/midi.0 $gadget/configs/c.1/
}

plug_in() { ls /sys/class/udc | head -n 1 >$gadget/UDC; }
plug_out() { echo >$gadget/UDC; }

# After each test, whatever its end.
clean_up() {
  killall -q -9 tessel-simulator tessel-firmware-updater amidi
  rmmod snd-dummy 2>/dev/null
  if [ -d $gadget ]; then
    plug_out 2>/dev/null
    rm -f $gadget/configs/c.1/midi.0
    rmdir $gadget/configs/c.1 $gadget/functions/midi.0 $gadget/strings/0x409 $gadget
  fi
  rm -rf $work
}

fail() { echo "FAILED: $*"; exit 1; }

# Runs a command until it succeeds.
until_true() {
  local attempt=0
  while ! "$@"; do
    attempt=$((attempt + 1))
    [ $attempt -lt 300 ] || fail "never came true: $*"
    usleep 100000
  done
}

# The address of the port that the computer has for the device, such as hw:1,0,0.
port() { amidi -l | awk '/ Tessel/ { print $2; exit }'; }
is_listed() { [ -n "$(port)" ]; }
is_gone() { ! is_listed; }

make_image() {  # [bytes]
  mkdir -p $work
  vbin create $image \
    --region hw=$hardware_id --section address=0x08004000,fill=random:"${1:-20000}":1 \
    --region hw=$hardware_id --section address=0x08040000,fill=random:3000:2 \
                             --section address=0x08060000,fill=count:700
}

# The simulator plays the device until the test ends.
start_device() {  # simulator's options
  mkdir -p $work
  rm -f $work/ready
  tessel-simulator --gadget $gadget --firmware 1.5.0.9 --update-version 1.6.0.47 --flash $work/flash.hex \
    --trace $work/trace --ready-file $work/ready "$@" >$work/simulator.log 2>&1 &
  device=$!
  until_true test -e $work/ready
  until_true is_listed
}

stop_device() {
  kill $device
  wait $device || { cat $work/simulator.log; fail "the simulator failed"; }
}

updater() { timeout -k 5 120 tessel-firmware-updater "$@" "-ABSOLUTE_FIRMWARE_FILE_PATH=$image"; }

# Whether a program reads from the port of this address.
is_read() {  # such as hw:1,0,0
  local card=${1#hw:}
  grep -A 3 "^Input 0" "/proc/asound/card${card%%,*}/midi0" | grep -q "Owner PID"
}

# The address of the device's own end of the cable.
device_end() { echo "hw:$(readlink /proc/asound/device | tr -dc 0-9),0,0"; }

# Runs the updater, leaves its records in $work/log, and compares its exit status.
expect_status() {  # wanted, options
  local wanted=$1 status=0
  shift
  updater "$@" -DEBUG_CONSOLE >$work/log 2>&1 || status=$?
  cat $work/log
  [ $status -eq "$wanted" ] || fail "status $status instead of $wanted: $*"
}

has_status() {  # wanted
  local status=0
  updater -RETURN_UPDATE_MODE_STATUS || status=$?
  [ $status -eq "$1" ]
}

expect_record() { grep -q "$1" $work/log || fail "no record of: $1"; }

expect_flash_equals_image() {
  vbin flash $image $work/wanted.hex --hardware-id $hardware_id
  cmp $work/flash.hex $work/wanted.hex || fail "the flash is not the image"
}
