# Tests Bluetooth printers. hci0 is the machine's adapter, hci1 the printer's. The Bluetooth service, bluetoothd,
# manages both adapters, pairs them and publishes the printer's serial port.
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/bus
host=00:AA:01:00:00:00
printer=00:AA:01:01:00:01
socket=/run/printer
mkdir -p /var/lib/bluetooth /etc/bluetooth /var/run
printf '[General]\nDiscoverableTimeout=0\nPairableTimeout=0\n' >/etc/bluetooth/main.conf
cat >/etc/bus.conf <<'END'
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>system</type><listen>unix:path=/run/bus</listen><auth>EXTERNAL</auth><policy context="default">
<allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/></policy></busconfig>
END

start_service() {
  rm -f /var/run/sdp
  bluetoothd -n -C -f /etc/bluetooth/main.conf >>/run/bluetoothd.log 2>&1 &
  service=$!
  within 20 test -S /var/run/sdp
  sdptool add --channel=3 SP >/dev/null </dev/null
}

# bluetoothctl takes one command at a time, and answers it a moment later.
control() { # COMMAND …
  (
    sleep 1
    for command in "$@"; do
      echo "$command"
      sleep 1
    done
  ) | bluetoothctl --agent NoInputNoOutput >>/run/control.log 2>&1
}

is_paired() { quorport -d "bluetooth:$printer" list --json | grep -q '"protocolStrings":\["'; }

serve() { # SETTING …: starts the virtual printer that the peer makes reachable over Bluetooth
  [ -z "$server" ] || { kill "$server"; wait "$server" 2>/dev/null; }
  rm -f $socket
  quorport simulate --listen unix:$socket "$@" >/run/served </dev/null &
  server=$!
  within 20 test -S $socket
}

switch_on() { # [COUNT]: starts the peer; if COUNT is given, the peer switches its adapter off after COUNT bytes
  [ -z "$peer" ] || { kill "$peer" 2>/dev/null; wait "$peer" 2>/dev/null; }
  rm -f /run/carried
  peer $printer 3 $socket /run/carried $1 &
  peer=$!
  within 20 test -s /run/carried
}

seq 1 40 | sed 's/^/a line of the receipt, number /' >/run/receipt
seq 1 200 | sed 's/^/a line of the long receipt, number /' >/run/long

check doctor-names-a-missing-bus answers 3 no-bus quorport -d "bluetooth:$printer" doctor --json
dbus-daemon --config-file=/etc/bus.conf --fork
check doctor-names-a-missing-service answers 3 no-service quorport -d "bluetooth:$printer" doctor --json
btvirt -l2 -B >/dev/null 2>&1 &
within 20 test -e /sys/class/bluetooth/hci1
start_service
check doctor-names-a-printer-that-is-not-paired answers 3 not-paired quorport -d "bluetooth:$printer" doctor --json
control "select $printer" "power on" "pairable on" "discoverable on" "select $host" "power on" "scan on" "scan on" \
  "pair $printer" "scan off" quit
cp /run/control.log /run/answer
check the-peer-is-paired within 20 is_paired

contract --gtest_color=no >/run/answer 2>&1 || { cat /run/answer; echo "not ok the duties of a link"; }
sed -n 's/^\[       OK \] \([^ ]*\).*/ok \1/p' /run/answer

serve
switch_on
check status answers 0 '"ok":true' quorport -d "bluetooth:$printer" status --json
check receipt-is-printed answers 0 '"outcome":"printed"' quorport -d "bluetooth:$printer" print /run/receipt --json
check address-in-small-letters answers 0 '"outcome":"printed"' \
  quorport -d "bluetooth:$(echo $printer | tr A-F a-f)" print /run/receipt --json
check escpos-receipt-is-printed answers 0 '"outcome":"printed"' \
  quorport -d "bluetooth:$printer" -e escpos print /run/receipt --json
check disconnect answers 0 '"ok":true' quorport -d "bluetooth:$printer" disconnect --json

serve --set speed=1000
switch_on
quorport -d "bluetooth:$printer" -t 60000 print /run/long --json >/run/first 2>/dev/null &
first=$!
carries() { [ "$(cat /run/carried)" -gt "$1" ]; }
within 20 carries 500
check second-session-is-refused answers 4 'in use by another program' quorport -d "bluetooth:$printer" status --json
wait $first
cp /run/first /run/answer
check first-session-goes-on grep -q '"outcome":"printed"' /run/first

is_lost() { grep -q '"outcome":"unconfirmed"' /run/first && grep -q lost /run/first; }
for signal in TERM KILL; do
  serve --set speed=1000
  switch_on
  rm -f /run/ended
  (quorport -d "bluetooth:$printer" -t 60000 print /run/long --json >/run/first 2>/dev/null; echo >/run/ended) &
  within 20 carries 500
  kill -$signal $service
  check "service-that-ends-by-$signal-ends-the-link-in-two-seconds" within 2 test -e /run/ended
  within 60 test -e /run/ended
  cp /run/first /run/answer
  check "service-that-ends-by-$signal-is-a-lost-link" is_lost
  start_service
  serve
  switch_on
  next_job() { answers 0 '"outcome":"printed"' quorport -d "bluetooth:$printer" print /run/receipt --json; }
  check "next-job-after-$signal-works" within 20 next_job
done

for cut in $(seq 60 150 7500); do
  serve
  switch_on "$cut"
  quorport -d "bluetooth:$printer" print /run/long --json >/run/answer 2>&1
  code=$?
  accepted=$(field bytesAccepted)
  carried=$(cat /run/carried)
  echo "exit $code, accepted $accepted, the printer got $carried" >>/run/answer
  honest() {
    case $code:$(field outcome) in 6:unconfirmed | 5:refused) ;; *) return 1 ;; esac
    # bytesAccepted must include every byte that the printer got, except the bytes of the commands around the job. It
    # may be greater, because the kernel may hold some kilobytes on their way to the printer.
    [ $((accepted + 512)) -ge "$carried" ]
  }
  check "switched-off-after-$cut-bytes-is-not-printed" honest
done
serve
switch_on
check switched-on-again-prints within 20 next_job

gadget=/sys/kernel/config/usb_gadget/printer
mount -t configfs none /sys/kernel/config
mkdir -p $gadget/strings/0x409 $gadget/configs/c.1/strings/0x409 $gadget/functions/printer.0
echo 0x04b8 >$gadget/idVendor
echo 0x0202 >$gadget/idProduct
echo "S17" >$gadget/strings/0x409/serialnumber
echo "MFG:Quor Dalvane;CMD:ESCPOS;MDL:XQ700;CLS:PRINTER;" >$gadget/functions/printer.0/pnp_string
ln -s $gadget/functions/printer.0 $gadget/configs/c.1/
ls /sys/class/udc | head -1 >$gadget/UDC
within 20 test -e /dev/usb/lp0
echo "avahi:x:108:113::/:/bin/false" >>/etc/passwd
echo "avahi:x:113:" >>/etc/group
mkdir -p /etc/avahi/services /run/avahi-daemon
ip link set lo up multicast on
ip addr add 127.0.0.1/8 dev lo 2>/dev/null
printf '[server]\nhost-name=till\nuse-ipv6=no\nallow-interfaces=lo\n' >/etc/avahi/avahi-daemon.conf
cat >/etc/avahi/services/printer.service <<'END'
<?xml version="1.0"?><!DOCTYPE service-group SYSTEM "avahi-service.dtd">
<service-group><name>Bar</name><service><type>_pdl-datastream._tcp</type><port>9100</port></service></service-group>
END
avahi-daemon --no-drop-root --no-chroot >/run/avahi.log 2>&1 &
found() { # whether one search shows the USB, the Bluetooth and the network printer
  quorport find --json >/run/answer 2>&1
  for what in "usb:S17" "bluetooth:$printer" "tcp:127.0.0.1:9100"; do
    grep -qF "\"device\":\"$what\"" /run/answer || return 1
  done
}
found_soon() { found || found || found || found; } # the network's service needs a moment after its start
check find-shows-usb-bluetooth-and-network-printers-at-once found_soon
