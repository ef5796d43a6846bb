# The README's program in Python, run with the wheel that pip installs offline, prints its receipt.
. ./printer.sh
serve_printer
python3 -m venv environment
environment/bin/pip install --no-index packages/quorioport-*.whl
environment/bin/python -c 'import quorioport, sys; assert quorioport.__file__.startswith(sys.prefix), quorioport.__file__'
environment/bin/python program.py | tee said
grep -x printed said
await_paper "THE CORNER BAKERY"
