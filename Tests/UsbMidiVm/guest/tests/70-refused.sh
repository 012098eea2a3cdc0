# A port that another program holds, or that the user may not open, leaves a record that tells so.
make_gadget
make_image
start_device
amidi -p "$(port)" -d >/dev/null &
other=$!
until_true is_read "$(port)"
expect_status 1 -RETURN_UPDATE_MODE_STATUS
expect_record "another program holds the port"
kill $other
wait $other || true

chmod 600 /dev/snd/*
chmod 777 $work
su guest -c "tessel-firmware-updater -RETURN_UPDATE_MODE_STATUS -DEBUG_CONSOLE" >$work/log 2>&1 || true
cat $work/log
expect_record 'add the user to the group "audio"'
expect_status 5 -RETURN_UPDATE_MODE_STATUS
stop_device
