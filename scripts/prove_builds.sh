#!/usr/bin/env bash
# prove_builds.sh [OPTIONS of prove] [ROW …]: builds the programs that `./dev prove` needs for
# these rows of the proof. Without rows, builds all programs.
set -euo pipefail

rows=()
while (($#)); do
  case $1 in
    --minutes) shift ;; # skips its value
    -*) ;;
    *) rows+=("$1") ;;
  esac
  shift || true
done

wanted() { # wanted ROW …: succeeds if the script's arguments contain one of these rows, or no row
  ((${#rows[@]})) || return 0
  local row
  for row in "${rows[@]}"; do
    [[ " $* " == *" $row "* ]] && return 0
  done
  return 1
}

preset() { # preset PRESET [BUILD OPTIONS …]
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" "${@:2}"
}

wanted model faults allocations torture jobs proofs schedules clocks bounds threads soak journal machine queues audit && preset default
wanted fuzz && preset fuzz
wanted coverage && preset coverage
if wanted sanitizers; then
  for sanitizer in tsan asan; do
    preset "$sanitizer" --target lifecycle_tests exit_with_live_port
  done
fi
exit 0
