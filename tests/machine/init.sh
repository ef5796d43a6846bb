#!/bin/sh
# The first program of the machine: prepares it, runs its cases and switches it off. Each case is a line
# "ok NAME" or "not ok NAME".
export PATH=/bin
busybox mount -t proc proc /proc
busybox --install -s /bin
mount -t sysfs sysfs /sys
mount -t devtmpfs devtmpfs /dev
echo "root:x:0:0::/:/bin/sh" >/etc/passwd
echo "kiosk:x:1000:1000::/:/bin/sh" >>/etc/passwd
printf 'root:x:0:\nlp:x:7:\nkiosk:x:1000:\n' >/etc/group
while read -r module parameter; do insmod "$module" $parameter; done </modules/order

check() { # NAME CONDITION …: one case
  name=$1
  shift
  if "$@"; then echo "ok $name"; else echo "not ok $name"; cat /run/answer; fi
}

within() { # SECONDS CONDITION …: waits until CONDITION holds
  left=$(($1 * 50))
  shift
  until "$@"; do
    left=$((left - 1))
    [ "$left" -gt 0 ] || return 1
    usleep 20000
  done
}

answers() { # EXIT_CODE TEXT COMMAND …: whether COMMAND ends with EXIT_CODE and its output contains TEXT
  wanted=$1 text=$2
  shift 2
  "$@" >/run/answer 2>&1
  code=$?
  echo "exit $code" >>/run/answer
  [ "$code" = "$wanted" ] && grep -qF -- "$text" /run/answer
}

field() { sed -n "s/.*\"$1\":\"\{0,1\}\([^\",}]*\).*/\1/p" /run/answer; } # NAME: the value of NAME in the answer

as_kiosk() { su kiosk -c "$*"; } # COMMAND …: runs it as an ordinary user

: >/run/answer
. /cases.sh
echo "end of the cases"
poweroff -f
