#!/usr/bin/env bash
# fuzz.sh BUILD LIMIT [TARGET …]: runs the named fuzz targets of the build folder, or all of them,
# one on each core. LIMIT is an option of the fuzzing engine that applies to each target:
# -max_total_time=SECONDS or -runs=INPUTS. QUOR_SEED is the seed of the inputs; 0 means a random
# seed. New inputs are collected in BUILD/corpus. An input that fails is written to BUILD/found,
# beside the target's log, and makes the run fail.
set -euo pipefail
build=$1
limit=$2
shift 2

dictionary_of() {
  case $1 in
    port_name | port_settings | *_address | device_spec) echo texts ;;
    operation | at_reply | print_job) echo links ;;
    simulator_input | log_record) echo commands ;;
    control_line) echo control ;;
    *) echo replies ;;
  esac
}

fuzz_one() {
  local target=$1 log=$build/found/$1.log
  mkdir -p "$build/corpus/$target"
  if "$build/bin/fuzz_$target" "$limit" -seed="${QUOR_SEED:-0}" -max_len=512 -timeout=20 -print_final_stats=1 \
    -dict="fuzz/dictionaries/$(dictionary_of "$target").dict" \
    -artifact_prefix="$build/found/$target-" \
    "$build/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
    echo "$target: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs," \
      "nothing found, $(grep -o 'cov: [0-9]*' "$log" | tail -n 1)"
  else
    echo "$target: FAILED"
    tail -n 60 "$log"
    return 1
  fi
}

mkdir -p "$build/found"
if (($# == 0)); then
  set -- "$build"/bin/fuzz_*
  set -- "${@##*/fuzz_}"
fi
export -f fuzz_one dictionary_of
export build limit
printf '%s\0' "$@" | xargs -0 --max-args=1 --max-procs="$(nproc)" bash -c 'fuzz_one "$1"' fuzz_one
