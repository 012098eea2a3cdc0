# The driver's own tests, on a gadget that they plug in and out.
make_gadget
usbmidi_tests --gtest_brief=1
