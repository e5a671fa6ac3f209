#!/usr/bin/env bash
# Fuzzes the crossover list reader with libFuzzer under AddressSanitizer and
# UndefinedBehaviorSanitizer for the given number of seconds (default 60).
# Exits non-zero when the fuzzer reports a crash or a sanitizer finding; the
# input that caused it is left in build-fuzz/artifacts/.
set -euo pipefail

seconds="${1:-60}"
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
out="$root/build-fuzz"

# clang, and the libFuzzer runtime that clang 14 links with -fsanitize=fuzzer.
source "$root/tools/packages.sh"
ensure_packages clang libclang-rt-14-dev

mkdir -p "$out/corpus" "$out/artifacts"
# -fno-sanitize-recover makes an undefined-behaviour report stop the run as a crash.
clang++ -std=c++20 -g -O1 -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all \
  -I"$root" -I"$root/backends/include" \
  "$root/tests/fuzz/crossover_list_fuzz.cpp" "$root/routing/crossover_list.cpp" \
  "$root/routing/crossover_table.cpp" "$root/core/link_state.cpp" "$root/core/platform_linux.cpp" \
  -ldl -lpthread -o "$out/crossover_list_fuzz"

# Seeds: valid entries, values of each kind, CR LF ends, an early empty line, a
# line longer than the reader's buffer, and lines without '='.
seed() { printf '%b' "$2" >"$out/corpus/seed-$1"; }
seed valid 'spotrf=2048\ndpotrf=never\nzgetrf=0x400\ncgeqrf=010\n'
seed never-prefixes 'spotrf=\nspotrf=n\nspotrf=nev\nspotrf=NEVER\nspotrf=nevers\n'
seed bad-values 'spotrf=0\nspotrf=-5\nspotrf=abc\nspotrf=99999999999999999999\nnosuch=-1\n'
seed crlf 'spotrf=4096\r\ndpotrf=12\r\n\r\nsgetrf=1\r\n'
seed empty-line-stops 'spotrf=10\n\ndpotrf=20\n'
seed no-separator 'spotrf\n=\n==\nspotrf==1\n\r'
seed long-line "spotrf=$(printf '%0300d' 7)\nx$(printf 'a%.0s' {1..400})=3\n"

echo "fuzz: running for ${seconds}s"
status=0
"$out/crossover_list_fuzz" "$out/corpus" -max_total_time="$seconds" -print_final_stats=1 \
  -artifact_prefix="$out/artifacts/" -max_len=4096 || status=$?
if ((status != 0)); then
  echo "fuzz: FAILED (exit $status); see $out/artifacts/" >&2
  exit "$status"
fi
echo "fuzz: no findings"
