#!/usr/bin/env bash
# trial.sh FOLDER: acts as a new user, in a bare Debian system that it makes in FOLDER/bare: installs the
# packages of FOLDER, compiles the program of the README as it is printed there, runs it against a served
# printer, and shows the receipt. It needs root, debootstrap and the network. The bare system sees nothing
# of this one. Each step shows how long it took.
set -euo pipefail
folder=$1
root=$folder/bare
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")

inside() {
  chroot "$root" env --ignore-environment HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin \
    DEBIAN_FRONTEND=noninteractive bash -ec "cd /root; $1"
}

# step NAME COMMAND …: runs the command; shows its output if it fails.
step() {
  local began=${EPOCHREALTIME/./}
  if ! "${@:2}" >"$folder/trial.log" 2>&1; then
    cat "$folder/trial.log" >&2
    echo "the trial failed at: $1" >&2
    exit 1
  fi
  local milliseconds=$(((${EPOCHREALTIME/./} - began) / 1000))
  printf '%5d.%d s  %s\n' $((milliseconds / 1000)) $((milliseconds / 100 % 10)) "$1"
}

rm -rf "$root"
step "a bare Debian $suite" debootstrap --variant=minbase "$suite" "$root"
cp "$folder"/*.deb "$root/root/"
step "the packages, a compiler and pkg-config installed" \
  inside "apt-get install --quiet --yes --no-install-recommends g++ pkg-config ./*.deb"
sed -n '/^```cpp$/,/^```$/{//!p}' README.md >"$root/root/program.cpp"
step "the README's program compiled as it is printed there" \
  inside "$(sed -n 's/^\$ \(g++ .*\)/\1/p' README.md)"
step "its receipt printed by a served printer" \
  inside 'quorport simulate --listen tcp:9100 --receipts paper >listening & trap "kill $!" EXIT
          until [ -s listening ]; do sleep 0.01; done
          ./a.out
          until [ -s paper/receipt-0001.txt ]; do sleep 0.01; done'
cat "$root/root/paper/receipt-0001.txt"
