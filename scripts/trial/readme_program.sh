# The README's program in C++ compiles as shown there, and prints its receipt.
. ./printer.sh
programs_of cpp "$pages/README.md" >program.cpp
eval "$(sed -n 's/^\$ \(g++ .*\)/\1/p' "$pages/README.md")"
serve_printer
./a.out
await_paper "THE CORNER BAKERY"
