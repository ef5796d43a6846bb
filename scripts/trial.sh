#!/usr/bin/env bash
# trial.sh FOLDER: tries the packages as a new user would, in a bare Debian system that it creates
# in FOLDER/bare. It installs the packages of FOLDER there, and runs the scripts of scripts/trial.
# The first line of each of these scripts is the claim that the script tests. trial.sh needs root,
# debootstrap and the network. The bare system does not see this machine's files, and the trials
# have a network of their own, so this machine's ports cannot disturb them. Each step shows its
# duration.
set -euo pipefail
folder=$1
root=$folder/bare
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")

# `tools` are the packages that the trials need. `optional` are packages that the packages of FOLDER
# can use but do not require.
tools=(cmake g++ iproute2 ninja-build pkg-config)
optional=(cups fonts-dejavu-core libzint-dev python3-venv systemd)

# Each trial builds on the ones before it.
trials=(programs programs_in_c readme_program python wheel print_system printer_application)
longest=300 # seconds

# inside WORD … COMMAND: runs the command in a root shell of the bare system, in the folder of the
# trials. The words are options of unshare. All processes of the command end when the command ends.
inside() {
  unshare --mount --pid --fork --kill-child --mount-proc --root="$root" --wd=/trial "${@:1:$#-1}" \
    env --ignore-environment HOME=/trial PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive \
    bash -euc "${*: -1}"
}

# step NAME COMMAND …: runs the command, and shows its output if it fails.
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

# Writes the claim of a trial: the first line of its script.
claim_of() {
  sed -n '1s/^# \(.*\)\.$/\1/p' "scripts/trial/$1.sh"
}

rm -rf "$root"
step "a bare Debian $suite" debootstrap --variant=minbase "$suite" "$root"
echo "127.0.0.1 localhost" >"$root/etc/hosts" # as an installer does
cp -r scripts/trial "$root/trial"
mkdir "$root/trial/packages"
cp "$folder"/*.deb "$folder"/*.whl "$root/trial/packages"
step "installation of the packages and of a developer's tools" inside \
  "rm -f packages/*-dbgsym_*; apt-get install --quiet --yes --no-install-recommends ${tools[*]} ${optional[*]} ./packages/*.deb"
for trial in "${trials[@]}"; do
  step "$(claim_of "$trial")" inside --net "ip link set lo up; timeout $longest bash -euo pipefail $trial.sh"
done
cat "$root/trial/paper/receipt-0001.txt"
