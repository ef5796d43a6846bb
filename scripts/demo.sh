#!/usr/bin/env bash
# demo.sh QUORPORT FOLDER: prints a text receipt and an ESC/POS receipt on the built-in printer. It shows the
# printed receipts as text, and writes them to FOLDER as text and as pictures.
set -euo pipefail
quorport=$1
folder=$2
mkdir -p "$folder"

# show EMULATION JOB: prints the file JOB, once for the picture and once for the text.
show() {
  local paper=$folder/receipt-$1
  echo "== $2, printed with --emulation $1"
  "$quorport" --device virtual: --emulation "$1" print --receipt "$paper.png" "$2"
  "$quorport" --device virtual: --emulation "$1" print --receipt "$paper.txt" "$2" >/dev/null
  cat "$paper.txt"
  echo "as a picture: $paper.png"
}

show line examples/receipt.txt
python3 scripts/escpos_receipt.py >"$folder/escpos_receipt.bin"
show escpos "$folder/escpos_receipt.bin"
