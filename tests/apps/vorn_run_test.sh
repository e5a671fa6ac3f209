#!/usr/bin/env bash
# vorn-run from the build tree over the emulator: the summary's row for the demo's
# two spotrf calls (below and above the crossover), the same with the GPU call
# failing and retried on the CPU, the preload order, the exit status passed on,
# and a failing exit with a message for each bad input.
set -uo pipefail
launcher=$1 demo=$2
tmp=$(mktemp -d /tmp/vorn-run-test-XXXXXX)
trap 'rm -rf "$tmp"' EXIT
failures=0
expect() {  # what, expected, actual
  [ "$2" == "$3" ] || { echo "FAIL $1: expected '$2', got '$3'"; failures=$((failures + 1)); }
}
spotrf_row() { "$launcher" --summary -- "$demo" 2>&1 >/dev/null | grep '^spotrf ' | tr -s ' '; }

expect "summary" "spotrf 2 1 1 1 over threshold, 1 under threshold" "$(spotrf_row)"
expect "summary, GPU call failing" "spotrf 2 0 2 1 retried after a GPU failure, 1 under threshold" \
  "$(VORN_EMU_STATUS=spotrf=4 spotrf_row)"

preload=$(LD_PRELOAD=libuser.so "$launcher" -- sh -c 'echo "$LD_PRELOAD"' 2>/dev/null)
expect "preload order" "libvorn_lapack_gfortran.so libvorn_lapack_link.so libuser.so" \
  "$(for f in $preload; do basename "$f"; done | grep -v cblas | xargs)"

"$launcher" --summary -- sh -c 'exit 3' 2>/dev/null
expect "exit status" 3 $?
"$launcher" --summary -- sh -c 'kill -TERM $$' 2>"$tmp/signal"
expect "signal death" "143 1" "$? $(grep -c 'signal 15' "$tmp/signal")"

while IFS='|' read -r status args; do
  # shellcheck disable=SC2086
  "$launcher" $args 2>"$tmp/message" >/dev/null
  expect "'vorn-run $args'" "$status 1" "$? $(grep -c '^vorn-run: ' "$tmp/message")"
done <<ROWS
2|--summary
2|--verbose --
127|-- no-such-program-$$
2|--crossovers $tmp/no-such-file -- true
2|--crossovers $tmp -- true
2|--bogus -- true
2|--cpu-always --gpu-always -- true
ROWS
exit $((failures > 0))
