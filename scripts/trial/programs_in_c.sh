# The examples compile with pkg-config and with CMake, in C and in C++, and print.
. ./printer.sh
examples=/usr/share/doc/libquorioport-dev/examples
serve_printer

read -ra flags < <(pkg-config --cflags --libs QuorIOPort)
gcc -Wall -Werror -o print "$examples/print.c" "${flags[@]}"
./print tcp:127.0.0.1:9100 "from C"
await_paper "from C"

cmake -S "$examples" -B examples -G Ninja
cmake --build examples
examples/print_static tcp:127.0.0.1:9100 "from C, without the shared library"
await_paper "without the shared library"
[ -z "$(ldd examples/print_static | grep libQuor)" ]

python3 "$examples/print.py" tcp:127.0.0.1:9100 "by ctypes alone"
await_paper "by ctypes alone"
