# shellcheck shell=bash
# The trials source this file. It sets `pages`, the folder of the installed documentation, and
# `paper`, the folder of the receipts, and defines functions that use these folders.

# shellcheck disable=SC2034  # the trials use it
pages=/usr/share/doc/quorport
paper=$PWD/paper

# serve_printer: starts a printer at port 9100 that writes its receipts to the empty folder `paper`.
serve_printer() {
  rm -rf "$paper" listening
  quorport simulate --listen tcp:9100 --receipts "$paper" >listening </dev/null &
  until [ -s listening ]; do sleep 0.01; done
}

# await_paper TEXT: waits until a receipt contains the text.
await_paper() {
  until grep -qs "$1" "$paper"/*.txt; do sleep 0.01; done
}

# programs_of KIND PAGE: writes the code blocks of this kind from the page to standard output.
programs_of() {
  sed -n '/^```'"$1"'$/,/^```$/{//!p}' "$2"
}
