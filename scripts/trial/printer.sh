# shellcheck shell=bash
# Sourced by the trials: a served printer and its paper, and the pages that the packages install.

# shellcheck disable=SC2034  # the trials use it
pages=/usr/share/doc/quorport
paper=$PWD/paper

# serve_printer: serves one at port 9100 whose paper lies in the folder `paper`, which is empty.
serve_printer() {
  rm -rf "$paper" listening
  quorport simulate --listen tcp:9100 --receipts "$paper" >listening </dev/null &
  until [ -s listening ]; do sleep 0.01; done
}

# await_paper TEXT: returns when a receipt has it.
await_paper() {
  until grep -qs "$1" "$paper"/*.txt; do sleep 0.01; done
}

# programs_of KIND PAGE: the page's blocks of that kind, as they are printed there.
programs_of() {
  sed -n '/^```'"$1"'$/,/^```$/{//!p}' "$2"
}
