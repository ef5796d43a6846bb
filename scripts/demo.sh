#!/usr/bin/env bash
# demo.sh QUORPORT FOLDER: prints the example receipts on the built-in printer. What came out of it
# is shown as text, and lies in FOLDER as text and as a picture.
set -euo pipefail
quorport=$1
folder=$2
mkdir -p "$folder"

# show EMULATION RECEIPT
show() {
  local job=examples/$2 printed=$folder/${2%.*}-$1
  echo "== $job, printed with --emulation $1"
  "$quorport" --emulation "$1" print --receipt "$printed.png" "$job"
  "$quorport" --emulation "$1" print --receipt "$printed.txt" "$job" >/dev/null
  cat "$printed.txt"
  echo "picture: $printed.png"
}

show line receipt.txt
show escpos receipt.escpos
