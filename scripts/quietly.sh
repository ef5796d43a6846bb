# shellcheck shell=bash
# Keeps long outputs off the screen. Sourced by ./dev.

# quietly WHAT LOG COMMAND …: runs the command and writes its output to the file LOG. A terminal
# shows the latest line during the run. If the command fails, the function shows the last lines of
# LOG and ends the script.
quietly() {
  local what=$1 log=$2
  shift 2
  mkdir -p "$(dirname "$log")"
  echo "== $what (log: $log)"
  if ! "$@" 2>&1 | tee "$log" | show_latest_line; then
    tail -n 40 "$log" >&2
    echo "./dev: $what failed; the whole log is $log" >&2
    exit 1
  fi
}

show_latest_line() {
  if [[ ! -t 1 ]]; then
    cat >/dev/null
    return
  fi
  local line width
  width=$(tput cols 2>/dev/null || echo 80)
  while IFS= read -r line; do
    printf '\r\033[K%s' "${line:0:width-1}"
  done
  printf '\r\033[K'
}
