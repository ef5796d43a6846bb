# The command and a kiosk print on USB printers through the kernel's driver.
mount -t configfs none /sys/kernel/config

socket=/run/socket
at_the_driver() { [ -n "$(ls /sys/class/usbmisc 2>/dev/null)" ]; }
nothing_at_the_driver() { ! at_the_driver; }

serve() { # SETTING …: starts the virtual printer; plug_in connects it to the USB cable
  [ -z "$server" ] || { kill $server; wait $server 2>/dev/null; }
  rm -f $socket
  quorport simulate --listen unix:$socket "$@" >/run/served </dev/null &
  server=$!
  within 20 test -S $socket
}

plug_in() { # KEY=VALUE …: see usb_printer
  rm -f /run/carried
  usb_printer carried=/run/carried "$@" 3>&- &
  printer=$!
  within 20 at_the_driver
}

pull() {
  kill $printer 2>/dev/null
  wait $printer 2>/dev/null
  within 20 nothing_at_the_driver
}

seq 1 40 | sed 's/^/a line of the receipt, number /' >/run/receipt
seq 1 200 | sed 's/^/a line of the long receipt, number /' >/run/long
length=$(wc -c </run/long)

doctor() { # EXIT_CODE CAUSE_OR_TEXT [OPTION …]: whether the doctor reports this exit code, and this cause or text
  wanted=$1 said=$2
  shift 2
  answers "$wanted" "$said" quorport -d usb: -t 1000 "$@" doctor --json
}

prints() { # DEVICE [OPTION …]: prints a receipt
  printed_on=$1
  shift
  answers 0 '"outcome":"printed"' quorport -d "$printed_on" "$@" print /run/receipt --json
}

# --- nothing there

check doctor-names-a-printer-that-is-not-plugged-in doctor 3 '"cause":"not-plugged-in"'
check list-shows-that-it-is-not-there answers 0 '"connected":false' quorport -d usb: list --json
ports=$(ls -d /sys/bus/usb/devices/usb1/1-0:1.0/*-port1)
echo 2 >/run/twice
mount -o bind /run/twice "$ports/over_current_count"
check doctor-names-a-hub-that-dropped-it doctor 3 '"cause":"dropped-by-hub"'
umount "$ports/over_current_count"

# --- a printer

serve
plug_in socket=$socket "serial=S 1/7"
check list-shows-model answers 0 '"modelNumber":"XQ700"' quorport -d usb: list --json
check list-shows-maker answers 0 '"name":"Quor Dalvane XQ700"' quorport -d usb: list --json
check list-shows-serial-number answers 0 '"serialNumber":"S 1/7"' quorport -d usb: list --json
check status answers 0 '"ok":true' quorport -d usb: status --json
check line-mode-receipt-is-printed prints "usb:S 1/7"
check escpos-receipt-is-printed prints usb:04b8:0202 -e escpos
check receipt-is-printed-by-its-path prints /dev/usb/lp0
check long-receipt-is-printed answers 0 '"outcome":"printed"' quorport -d usb: print /run/long --json

chmod 660 /dev/usb/lp0
names_no_group() {
  answers 3 '"cause":"no-permission"' as_kiosk quorport -d usb: doctor --json && ! grep -q usermod /run/answer
}
check doctor-does-not-name-the-group-root names_no_group
chown root:lp /dev/usb/lp0
check doctor-names-the-group-of-the-node answers 3 'usermod -aG lp' as_kiosk quorport -d usb: doctor --json

device=$(dirname "$(realpath /sys/class/usbmisc/lp0/device)")
node=$(printf '/dev/bus/usb/%03d/%03d' "$(cat "$device/busnum")" "$(cat "$device/devnum")")
usb "$node" 0 &
holder=$!
within 20 nothing_at_the_driver
check doctor-names-the-print-system doctor 4 '"cause":"held-by-print-system"'
check doctor-names-the-program-that-holds-it grep -qF "usb (process $holder)" /run/answer
kill $holder
wait $holder
check doctor-names-a-printer-that-was-not-given-back doctor 3 '"cause":"taken-from-driver"'
pull

# --- printers of other kinds

serve
plug_in socket=$socket empty-packets=yes
check empty-packets-are-no-end-in-line-mode prints usb:
check empty-packets-are-no-end-in-escpos prints usb: -e escpos
pull

serve
plug_in socket=$socket interface=second
check a-printer-at-a-second-interface-prints prints usb:

usb_printer controller=dummy_udc.1 carried=/run/other &
other=$!
within 20 test -e /dev/usb/lp1
pull
serve
plug_in socket=$socket serial=A,7
within 20 test -e /dev/usb/lp0
check doctor-names-two-that-fit doctor 3 '"cause":"ambiguous"'
check doctor-lists-them grep -qF 'usb:A\\,7 (Quor Dalvane XQ700), usb:/dev/usb/lp1' /run/answer
both_listed() {
  quorport -d 'usb:A\,7' -d /dev/usb/lp1 list --json >/run/answer
  [ "$(grep -o '"modelNumber":"XQ700"' /run/answer | wc -l)" = 2 ] && grep -qF '"serialNumber":"A,7"' /run/answer &&
    grep -qF '"serialNumber":null' /run/answer
}
check list-shows-two-of-one-model-one-without-a-serial-number both_listed
check one-of-two-is-chosen-by-its-serial-number prints 'usb:A\,7'
kill $other
wait $other 2>/dev/null
pull

# --- printers that do not answer

plug_in port-status=38
check doctor-shows-the-paper-out-of-a-silent-printer doctor 1 'its port reports: paper out'
check status-shows-it answers 1 'its port reports: paper out' quorport -d usb: -t 1000 status
check monitor-shows-it answers 1 'its port reports: paper out' quorport -d usb: -t 1000 monitor --count 1 --json
check job-on-a-silent-printer-is-refused answers 1 '"outcome":"refused"' quorport -d usb: -t 1000 print /run/receipt --json
check job-names-the-port grep -qF 'its port reports: paper out' /run/answer
pull
plug_in port-status=10
check doctor-shows-the-error-of-a-silent-printer doctor 1 'its port reports: error'
pull

says_that_it_cannot_answer() { # KEY=VALUE …
  plug_in "$@"
  doctor 1 'the device takes bytes but cannot answer' &&
    answers 1 'the device takes bytes but cannot answer' quorport -d usb: -t 1000 print /run/receipt --json &&
    answers 6 '"outcome":"unconfirmed"' quorport -d usb: -t 1000 print --proof none /run/receipt --json &&
    [ "$(cat /run/carried)" -ge "$(wc -c </run/receipt)" ]
}
check a-printer-that-only-takes-bytes says_that_it_cannot_answer protocol=1
pull
check a-printer-whose-answers-the-driver-refuses says_that_it_cannot_answer vendor=03f0 product=0004
pull

# --- jobs that do not end as they should

# bytesAccepted must include every byte that the printer got, except the bytes of the commands around the job. It may be
# greater by up to 8 KiB, which the driver may still hold.
is_honest() {
  accepted=$(field bytesAccepted)
  carried=$(cat /run/carried)
  echo "exit $code, accepted $accepted, the gadget got $carried" >>/run/answer
  case $code:$(field outcome) in 6:unconfirmed | 5:refused | 1:refused) ;; *) return 1 ;; esac
  [ "$((accepted + 512))" -ge "$carried" ] && [ "$accepted" -le "$((carried + 8192))" ]
}

print_badly() { # KEY=VALUE …: a fault during the long receipt; see usb_printer
  serve
  plug_in socket=$socket "$@"
  quorport -d usb: -t 2000 print /run/long --json >/run/answer 2>&1
  code=$?
  is_honest
}

check a-printer-that-takes-nothing-more print_badly hold-after=2048
pull
check a-printer-that-stalls print_badly stall-after=2048
pull

for bytes in 1 $(seq 1024 1024 "$length") $((length - 1)) $length; do
  check "unplugged-after-$bytes-bytes" print_badly pull-after=$bytes
  pull
  [ $((bytes % 3072)) = 0 ] || continue
  serve
  plug_in socket=$socket
  check "plugged-in-again-after-$bytes-bytes-prints" prints usb:
  pull
done

# --- two programs, and printers that are pulled and plugged in again

serve --set speed=1000
plug_in socket=$socket
quorport -d usb: -t 60000 print /run/long --json >/run/first 2>/dev/null &
first=$!
within 20 test -s /run/carried
check second-program-is-refused answers 4 "in use by another program: quorport (process $first)" quorport -d usb: status --json
check doctor-names-the-program-that-prints doctor 4 "in use by another program: quorport (process $first)"
wait $first
cp /run/first /run/answer
check first-program-goes-on grep -q '"outcome":"printed"' /run/first
pull

# The monitor asks for the status only every 600 s. No wait here is so long, so only the system's notices can report a
# change in time.
serve
plug_in socket=$socket
quorport -d usb: monitor --interval 600000 --json >/run/answer 2>/dev/null &
monitor=$!
last_is() { tail -1 /run/answer | grep -qE "\"state\":\"($1)\""; }
within 20 last_is ready
pull
check monitor-sees-a-printer-go-at-once within 20 last_is 'link-lost|unreachable'
plug_in socket=$socket
check monitor-sees-a-printer-come-back-at-once within 20 last_is ready
kill $monitor
wait $monitor

mkfifo /run/receipts
kiosk usb: /run/journal </run/receipts >/run/answer &
kiosk=$!
exec 3>/run/receipts
shows() { [ "$(grep -c "$1" /run/answer)" = "$2" ]; } # LINE COUNT
echo "first of the day" >&3
check kiosk-prints within 20 shows printed 1
pull
echo "second of the day" >&3
check kiosk-waits-for-a-printer-that-was-pulled within 20 shows 'waiting: cannot be reached' 1
plug_in socket=$socket
check kiosk-prints-when-it-is-plugged-in-again within 20 shows printed 2
echo "third of the day" >&3
check kiosk-goes-on within 20 shows printed 3
exec 3>&-
wait $kiosk
check kiosk-lost-nothing shows staff 0
pull

# --- no driver

rmmod usblp
usb_printer &
within 20 test -e /sys/bus/usb/devices/1-1:1.0/bInterfaceClass
check doctor-names-a-missing-driver doctor 3 '"cause":"no-driver"'
