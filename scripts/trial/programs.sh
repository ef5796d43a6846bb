# Every program of the packages starts, and every library finds all symbols that it needs.
. ./printer.sh
mapfile -t packages < <(dpkg-query --show --showformat '${Package} ${source:Package}\n' | sed -n 's/ quorioport$//p')
dpkg --listfiles "${packages[@]}" | grep -E '^/usr/(bin|lib/cups/backend)/[^/]+$|\.so\.[0-9.]+$' >files
[ "$(wc -l <files)" = 9 ] # three programs; three libraries, each with a link to it
while read -r file; do
  echo "$file"
  ldd -r "$file" >needs
  cat needs
  [ -z "$(grep -E 'not found|undefined symbol' needs)" ]
done <files

# The guides, the examples and the news are installed, and not compressed.
for page in NEWS.md README.md docs/quick-start.md examples/print.py; do
  [ -s "$pages/$page" ]
done

quorport --version
quorport --device virtual: print "$pages/examples/receipt.txt"
quorport-printer-app --version
/usr/lib/cups/backend/quor
