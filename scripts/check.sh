#!/usr/bin/env bash
# check.sh BUILD: formatting, lint, the reference, include rules and documentation. BUILD is a
# configured build folder, whose compile_commands.json says how each source is compiled. All checks
# run, also after a failed one; the last line says which failed.
set -uo pipefail
build=$1
failed=()

step() {
  echo "== $1"
  "${@:2}" || failed+=("$1")
}

formatting() {
  local file wrong=0
  while IFS= read -r -d '' file; do
    clang-format "$file" | cmp --silent - "$file" && continue
    echo "$file: not as clang-format -i writes it"
    wrong=1
  done < <(find . \( -name .git -o -name build -o -name 'build-*' \) -prune -o \
    \( -name '*.cpp' -o -name '*.h' -o -name '*.c' \) -print0)
  return "$wrong"
}

# Test programs are left out: the macros of the test framework trip many of the rules.
lint() {
  python3 - "$build/compile_commands.json" <<'PY' |
import json, os, sys
root = os.getcwd() + "/"
files = {entry["file"].removeprefix(root) for entry in json.load(open(sys.argv[1]))}
print("\0".join(sorted(f for f in files if not f.startswith(("tests/", "fuzz/", "build", "/")))), end="")
PY
    xargs -0 --max-args=1 --max-procs="$(nproc)" clang-tidy --quiet -p "$build" \
      2> >(grep -v 'warnings generated' >&2)
}

step "clang-format" formatting
step "clang-tidy" lint
step "reference" scripts/docs.sh "$build/docs"
for rule in include_rules documentation wording; do
  step "$rule" python3 -B "tests/structure/$rule.py" .
done

if ((${#failed[@]})); then
  echo "failed: ${failed[*]}" >&2
  exit 1
fi
echo "all checks passed"
