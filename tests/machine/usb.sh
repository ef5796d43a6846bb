# USB printers: the gadget of the kernel is the printer's end of the cable, and the command must get these cases right.
mount -t configfs none /sys/kernel/config

gadget=/sys/kernel/config/usb_gadget/printer
socket=/run/printer
udc=$(ls /sys/class/udc | head -1)

make_gadget() {
  mkdir -p $gadget/strings/0x409 $gadget/configs/c.1/strings/0x409 $gadget/functions/printer.0
  echo 0x04b8 >$gadget/idVendor
  echo 0x0202 >$gadget/idProduct
  echo "S 1/7" >$gadget/strings/0x409/serialnumber
  echo "MFG:Quor Dalvane;CMD:ESCPOS;MDL:XQ700;CLS:PRINTER;" >$gadget/functions/printer.0/pnp_string
  ln -s $gadget/functions/printer.0 $gadget/configs/c.1/
}

plug_in() { # [PULL_AFTER]
  rm -f /run/carried
  make_gadget
  echo "$udc" >$gadget/UDC
  within 10 test -e /dev/usb/lp0 -o -e /dev/usb/lp1
  within 10 test -e /dev/g_printer0
  if [ -n "$1" ]; then
    relay /dev/g_printer0 $socket /run/carried "$1" $gadget/UDC &
  else
    relay /dev/g_printer0 $socket /run/carried &
  fi
  relay=$!
}

# The gadget is made anew each time: the kernel's keeps the bytes that were under way when it was
# pulled.
pull() {
  kill $relay 2>/dev/null
  wait $relay 2>/dev/null
  [ -z "$(cat $gadget/UDC)" ] || echo >$gadget/UDC
  within 10 nothing_at_the_driver
  rm $gadget/configs/c.1/printer.0
  rmdir $gadget/functions/printer.0
}

nothing_at_the_driver() { [ -z "$(ls /sys/class/usbmisc 2>/dev/null)" ]; }

serve() { # SETTING …: the virtual printer that the relay leads to
  [ -z "$server" ] || { kill $server; wait $server 2>/dev/null; }
  rm -f $socket
  quorport simulate --listen unix:$socket "$@" >/run/served </dev/null &
  server=$!
  within 20 test -S $socket
}

seq 1 40 | sed 's/^/a line of the receipt, number /' >/run/receipt
seq 1 200 | sed 's/^/a line of the long receipt, number /' >/run/long

check doctor-names-a-printer-that-is-not-plugged-in answers 3 not-plugged-in quorport -d usb: doctor --json
serve
plug_in
check list-shows-model answers 0 '"modelNumber":"XQ700"' quorport -d usb: list --json
check list-shows-maker answers 0 '"name":"Quor Dalvane XQ700"' quorport -d usb: list --json
check list-shows-serial-number answers 0 '"serialNumber":"S 1/7"' quorport -d usb: list --json
check status answers 0 '"ok":true' quorport -d usb: status --json
check line-mode-receipt-is-printed answers 0 '"outcome":"printed"' quorport -d "usb:S 1/7" print /run/receipt --json
check escpos-receipt-is-printed answers 0 '"outcome":"printed"' quorport -d usb:04b8:0202 -e escpos print /run/receipt --json
check long-receipt-is-printed-by-its-path answers 0 '"outcome":"printed"' quorport -d /dev/usb/lp0 print /run/long --json

chown root:lp /dev/usb/lp0
chmod 660 /dev/usb/lp0
check doctor-names-the-group-of-the-node answers 3 'usermod -aG lp' as_kiosk quorport -d usb: doctor --json

pull
serve --set speed=1000
plug_in
quorport -d usb: -t 60000 print /run/long --json >/run/first 2>/dev/null &
first=$!
within 20 test -s /run/carried
check second-program-is-refused answers 4 'in use by another program: quorport' quorport -d usb: status --json
wait $first
cp /run/first /run/answer
check first-program-goes-on grep -q '"outcome":"printed"' /run/first

length=$(wc -c </run/long)
pull
for kilobyte in $(seq 1 $((length / 1024))); do
  serve
  plug_in $((kilobyte * 1024))
  quorport -d usb: print /run/long --json >/run/answer 2>&1
  code=$?
  accepted=$(field bytesAccepted)
  carried=$(cat /run/carried)
  echo "exit $code, accepted $accepted, the gadget got $carried" >>/run/answer
  honest() {
    case $code:$(field outcome) in 6:unconfirmed | 5:refused) ;; *) return 1 ;; esac
    # No byte may arrive that was not counted, but for the commands around the job. More may be
    # counted than was carried: the driver and the gadget hold some kilobytes.
    [ $((accepted + 512)) -ge "$carried" ]
  }
  check "unplugged-after-$kilobyte-kilobytes-is-not-printed" honest
  pull
  serve
  plug_in
  check "plugged-in-again-after-$kilobyte-kilobytes-prints" answers 0 '"outcome":"printed"' \
    quorport -d usb: print /run/receipt --json
  pull
done

serve
plug_in
quorport -d usb: monitor --interval 200 --json >/run/seen 2>/dev/null &
monitor=$!
within 20 grep -q '"state":"ready"' /run/seen
pull
within 20 grep -qE '"state":"(unreachable|link-lost)"' /run/seen
plug_in
comes_back() { tail -1 /run/seen | grep -q '"state":"ready"' && [ "$(grep -c ready /run/seen)" -ge 2 ]; }
cp /run/seen /run/answer
check monitor-sees-a-printer-come-back within 20 comes_back
kill $monitor
pull

rmmod usblp
make_gadget
echo "$udc" >$gadget/UDC
within 10 test -e /sys/bus/usb/devices/1-1:1.0/bInterfaceClass
check doctor-names-a-missing-driver answers 3 no-driver quorport -d usb: doctor --json
