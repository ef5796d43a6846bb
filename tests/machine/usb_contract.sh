# Tests the duties that every link has, on links that use the kernel's driver of USB printers. Prints a line "ok NAME"
# for each test that passes.
mount -t configfs none /sys/kernel/config
usb_contract --gtest_color=no --gtest_brief=0 >/run/answer 2>&1 || { cat /run/answer; echo "not ok the duties of a link"; }
sed -n 's/^\[       OK \] \([^ ]*\).*/ok \1/p' /run/answer
