# shellcheck shell=bash
# Sourced by the trials. Serves a virtual printer with its paper, and names the folder of the
# installed pages.

# shellcheck disable=SC2034  # the trials use it
pages=/usr/share/doc/quorport
paper=$PWD/paper

# serve_printer: starts a printer at port 9100 that writes its receipts to the empty folder `paper`.
serve_printer() {
  rm -rf "$paper" listening
  quorport simulate --listen tcp:9100 --receipts "$paper" >listening </dev/null &
  until [ -s listening ]; do sleep 0.01; done
}

# await_paper TEXT: returns when a receipt contains the text.
await_paper() {
  until grep -qs "$1" "$paper"/*.txt; do sleep 0.01; done
}

# programs_of KIND PAGE: writes the code blocks of this kind from the page to standard output.
programs_of() {
  sed -n '/^```'"$1"'$/,/^```$/{//!p}' "$2"
}
