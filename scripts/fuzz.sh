#!/usr/bin/env bash
# fuzz.sh BUILD SECONDS: runs every fuzz target of the build folder for so many seconds. New inputs
# gather in BUILD/corpus; an input that breaks something lies in BUILD/found and ends the run.
set -euo pipefail
build=$1
seconds=$2

mkdir -p "$build/found"
for program in "$build"/bin/fuzz_*; do
  target=${program##*/fuzz_}
  echo "== $target, $seconds seconds"
  mkdir -p "$build/corpus/$target"
  "$program" -max_total_time="$seconds" -max_len=256 -print_final_stats=1 \
    -dict=fuzz/replies.dict -artifact_prefix="$build/found/$target-" \
    "$build/corpus/$target" "fuzz/corpus/$target"
done
