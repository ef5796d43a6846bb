#!/bin/sh
# Queries an ESC/POS status as a shell would, and writes its three bytes to standard output. Usage:
# status_command.sh socat|nc PORT
case $1 in
  socat) set -- socat - "TCP:127.0.0.1:$2,nodelay" ;;
  nc) set -- nc -w 1 127.0.0.1 "$2" ;;
esac
printf '\033\035\003\004\000\000\020\004\001\020\004\002\020\004\004' | "$@"
