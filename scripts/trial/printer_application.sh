# The printer application, started with its systemd unit's settings, prints under its own account and keeps its state below /var/lib.
. ./printer.sh
serve_printer
unit=/lib/systemd/system/quorport-printer-app.service
of_unit() {
  sed -n "s/^$1=//p" "$unit"
}

systemd-analyze verify --man=no "$unit"
systemd-analyze security --offline=yes --threshold=25 "$unit" # tenths: 2.5 is "OK", and a unit without limits has 9.6

# Starts the application as the service manager would.
state=/var/lib/$(of_unit StateDirectory)
useradd --system --groups "$(of_unit SupplementaryGroups | tr ' ' ,)" application
install --directory --owner=application "$state" "/var/cache/$(of_unit CacheDirectory)"
read -ra settings < <(of_unit Environment)
setpriv --reuid=application --regid=application --init-groups --no-new-privs --bounding-set=-all \
  env "${settings[@]}" sh -c "umask $(of_unit UMask); exec $(of_unit ExecStart)" &
server=$!

until (: >/dev/tcp/localhost/8631) 2>/dev/null; do sleep 0.05; done
quorport-printer-app add -u ipp://localhost:8631/ipp/system -d till -m escpos-80 -v tcp:127.0.0.1:9100
echo "by the printer application" >text
quorport-printer-app submit -u ipp://localhost:8631/ipp/print/till -o document-format=text/plain text
await_paper "by the printer application"
until quorport jobs --journal "$state/journal.db" | grep ' printed'; do sleep 0.05; done
[ -z "$(find "$state" ! -user application)" ]
[ -z "$(find "$state" -type f -perm /077)" ]
kill "$server"
wait "$server"
