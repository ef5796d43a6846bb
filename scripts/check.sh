#!/usr/bin/env bash
# check.sh BUILD [--all]: checks formatting, lint, the reference, include rules and documentation.
# BUILD is a configured build folder. With --all every source is linted, otherwise only the sources
# that changed since they last passed. All checks run, even after a failed one; the last line names
# the failed checks.
set -uo pipefail
build=$1
failed=()

step() {
  local began=$SECONDS
  echo "== $1"
  "${@:2}" || failed+=("$1")
  echo "   $((SECONDS - began)) s"
}

formatting() {
  find . \( -name .git -o -name build -o -name 'build-*' \) -prune -o \
    \( -name '*.cpp' -o -name '*.h' -o -name '*.c' -o -name '*.mm' \) -print0 |
    xargs -0 --max-args=40 --max-procs="$(nproc)" clang-format --dry-run --Werror
}

# The back end for the handheld platform compiles in two ways from the same sources.
handheld() {
  cmake --build "$build" --target quor_handheld -- --quiet &&
    ctest --test-dir "$build" --quiet --output-on-failure --no-tests=error --tests-regex CompileForTheDevice
}

step "clang-format" formatting
step "clang-tidy" python3 -B scripts/lint.py "${@:2}" "$build"
step "handheld" handheld
step "reference" scripts/docs.sh "$build/docs"
for rule in include_rules files documentation wording; do
  step "$rule" python3 -B "tests/structure/$rule.py" .
done

if ((${#failed[@]})); then
  echo "failed: ${failed[*]}" >&2
  exit 1
fi
echo "all checks passed"
