#!/bin/bash
# Tests the receipts of a shop on a virtual printer. Needs quorport in the PATH. The exit status is 0 if the receipt is
# right.
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# The code under test: put yours here.
print_receipt() {
  printf '\x1b@\x1bt\x13Caf\x82  2.80 \xd5\n\x1bp\0\x19\xfa\x1dVA\0' >"/dev/tcp/$1/$2"
}

quorport --json simulate --strict --set profile=escpos-80 --listen tcp: --receipts "$folder" \
  </dev/null >"$folder/records" &
printer=$!
until [[ -s $folder/records ]]; do sleep 0.01; done
place=$(grep -o 'tcp:[0-9.]*:[0-9]*' "$folder/records")
IFS=: read -r _ host port <<<"$place"

print_receipt "$host" "$port"
until [[ -s $folder/receipt-0001.json ]]; do sleep 0.01; done

kill "$printer"
wait "$printer" # fails if a job contained anything that the printer does not know
grep -q 'Café  2.80 €' "$folder/receipt-0001.txt"
grep -q '"drawer":1' "$folder/receipt-0001.json"
echo "the receipt is right"
