# The README's program in Python, run with the Debian package, prints its receipt.
. ./printer.sh
serve_printer
programs_of python "$pages/README.md" >program.py
python3 program.py | tee said
grep -x printed said
await_paper "THE CORNER BAKERY"
