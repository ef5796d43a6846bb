# A queue, created by the command in docs/print-system.md, prints under the account lp in a print system that root has started.
. ./printer.sh
serve_printer
cupsd
until lpstat -r | grep -qx 'scheduler is running'; do sleep 0.05; done

# The scheduler runs a back end without root's rights if every user may execute it.
[ "$(stat --format '%a %U %G' /usr/lib/cups/backend/quor)" = "755 root root" ]

# The files by which the kernel shows a USB printer.
mkdir -p /sys/devices/printer/interface /sys/class/usbmisc/lp0
ln -sfn ../../../devices/printer/interface /sys/class/usbmisc/lp0/device
echo 'MFG:Corner;MDL:T80;SN:0042;CLS:PRINTER;' >/sys/devices/printer/interface/ieee1284_id
lpinfo -v | grep -x 'direct quor:/usb/0042'

# await_journal NUMBER: returns when the journal lists this number of printed jobs.
await_journal() {
  until [ "$(quorport jobs --journal /var/cache/cups/quor/jobs.db | grep -c ' printed')" = "$1" ]; do sleep 0.05; done
}

guide=$pages/docs/print-system.md
eval "$(sed -n 's/^ *sudo \(lpadmin -p till .*\)/\1/p' "$guide" | sed 's/192\.0\.2\.10/127.0.0.1/')"
lp -d till "$pages/examples/receipt.txt"
await_paper "THE CORNER BAKERY"
await_journal 1
[ "$(stat --format %U /var/cache/cups/quor/jobs.db)" = lp ]

# Root has read the journal; the back end must still be able to write to it.
echo "another receipt" | lp -d till -
await_paper "another receipt"
await_journal 2
