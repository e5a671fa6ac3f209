#!/usr/bin/env bash
# Runs Debian's reference LAPACK test programs (package liblapack-test) twice:
# against the system's LAPACK alone (OpenBLAS), and with the link library
# preloaded in front of it, as an application would use it. With --ilp64 it runs
# the same programs built with 64-bit default integers instead (package
# liblapack64-test, /usr/lib/x86_64-linux-gnu/lapack64): alone, against the
# reference LAPACK and BLAS built the same way (liblapack64, libblas64), and with
# the link library preloaded and VORN_ILP64=1, so that the link library serves
# 64-bit integers over its 32-bit CPU library. Prints per
# precision and program group the tests run, the tests that failed to pass the
# threshold and the error-exit reports of both runs, and exits non-zero when,
# for any program/input pair, the linked run does worse than the run alone:
# fewer tests passed, more failed, more routines returning an unexpected INFO, or an abnormal end (killed by a signal or the
# time limit, a non-zero exit status where the run alone exited with 0, output
# missing, cut short or with a count that cannot be read). A pair where the
# linked run does better is listed as a note.
#
#   tools/reference-lapack.sh [-j JOBS] [--ilp64] [--compare-only] [BUILD_DIR]
#
# BUILD_DIR (default ./build) must hold the built libvorn_lapack_link.so,
# liblapackcpu.so and backends/vorn-emulator/libvorn_lapack.so. JOBS (default 2)
# programs run at a time. The outputs go to BUILD_DIR/reference-lapack/openblas
# and .../link (with --ilp64 BUILD_DIR/reference-lapack64/reference and .../link),
# NAME.out named as lapack_testing.py expects them (snep.out, dtest.out,
# zctest.out, ctest_rfp.out, ...), so that
#   /usr/bin/python3 /usr/lib/x86_64-linux-gnu/lapack/lapack_testing.py -d DIR -s
# sums either folder; the counts here are the same, plus the balancing programs
# (sbal.out, sbak.out, sgbal.out, sgbak.out, ...) that it leaves out.
# --compare-only runs nothing: it compares the outputs an earlier run left in
# BUILD_DIR/reference-lapack (or reference-lapack64) again.
#
# Error-exit reports are the lines a program prints when, after an illegal
# argument, its own xerbla_ was not called ("*** Illegal value of parameter
# number N not detected by X ***") or was called with another name or number
# ("*** XERBLA was called ..."). Under the link library each routine it exports
# runs in the OpenBLAS that the CPU library loads in a namespace of its own; that
# OpenBLAS calls its own xerbla_ (which prints " ** On entry to X parameter
# number N had an illegal value"), never the program's. Those reports are
# expected: they are counted, not compared.
#
# Exit status: 0 no pair does worse with the link library, 1 some pair does, 2
# no build (or, with --compare-only, no earlier outputs), 77 the test programs
# are not installed and cannot be.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=2
build=build
compare_only=0
ilp64=0
while (($#)); do
  case "$1" in
    -j) jobs="$2"; shift 2 ;;
    -j*) jobs="${1#-j}"; shift ;;
    --compare-only) compare_only=1; shift ;;
    --ilp64) ilp64=1; shift ;;
    -h|--help) awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "${BASH_SOURCE[0]}"; exit 0 ;;
    *) build="$1"; shift ;;
  esac
done
[ -d "$build" ] || { echo "no build folder '$build'" >&2; exit 2; }
build=$(cd "$build" && pwd)

# The run alone is the side "openblas" (the 32-bit programs' LAPACK is the
# system's OpenBLAS) or, with --ilp64, "reference" (the 64-bit programs link the
# reference liblapack64 and libblas64, which no other package provides).
if ((ilp64)); then
  programs=/usr/lib/x86_64-linux-gnu/lapack64 package=liblapack64-test limit=240
  out="$build/reference-lapack64" alone=reference alone_title="reference LAPACK alone"
else
  programs=/usr/lib/x86_64-linux-gnu/lapack package=liblapack-test limit=900
  out="$build/reference-lapack" alone=openblas alone_title="OpenBLAS alone"
fi
link_library="$build/libvorn_lapack_link.so"
# gfortran's callers take complex function results from registers and use the
# later form of syswapr/heswapr: this library, preloaded first, serves them.
gfortran_library="$build/libvorn_lapack_gfortran.so"
gpu_folder="$build/backends/vorn-emulator"
if ((compare_only)); then
  [ -d "$out/$alone" ] && [ -d "$out/link" ] || { echo "no earlier outputs in $out" >&2; exit 2; }
else
  source "$root/tools/packages.sh"
  ensure_packages "$package" || true
  [ -x "$programs/xlintsts" ] || { echo "$package is not installed and cannot be installed here" >&2; exit 77; }
  for file in "$link_library" "$gfortran_library" "$build/liblapackcpu.so" "$gpu_folder/libvorn_lapack.so"; do
    [ -f "$file" ] || { echo "missing $file: build the project first" >&2; exit 2; }
  done
fi

# The 90 program/input pairs: "group output program input". The groups are the
# rows of the summary.
pairs=()
for p in s d c z; do
  case $p in s) P=REAL ;; d) P=DOUBLE ;; c) P=COMPLEX ;; z) P=COMPLEX16 ;; esac
  pairs+=("$P-lin ${p}test xlintst$p ${p}test.in")
  pairs+=("$P-rfp ${p}test_rfp xlintstrf$p ${p}test_rfp.in")
  for t in nep sep se2 svd glm gqr gsv csd lse; do
    pairs+=("$P-eig $p$t xeigtst$p $t.in")
  done
  for t in ec ed gg gd sb sg bb bal bak gbal gbak; do
    pairs+=("$P-eig $p$t xeigtst$p $p$t.in")
  done
done
pairs+=("DOUBLE-mixed dstest xlintstds dstest.in")
pairs+=("COMPLEX16-mixed zctest xlintstzc zctest.in")
groups="REAL-lin REAL-rfp REAL-eig DOUBLE-lin DOUBLE-rfp DOUBLE-eig DOUBLE-mixed
        COMPLEX-lin COMPLEX-rfp COMPLEX-eig COMPLEX16-lin COMPLEX16-rfp COMPLEX16-eig COMPLEX16-mixed"

# One run of one pair: SIDE OUTPUT PROGRAM INPUT. Each program runs in its output
# folder (some write scratch files there) with one OpenBLAS thread, as JOBS run
# side by side. Writes OUTPUT.rc (exit status) and OUTPUT.seconds. The limit per
# program only guards against a hang; it is far above any normal run (the longest
# takes under 40 s). It is lower for the 64-bit programs, four of which are known
# to hang under the link library (see the known pairs below). The linked
# run of the 64-bit programs sets VORN_ILP64=1; no other run sets it.
run_pair() {
  local side=$1 name=$2 program=$3 input=$4 status start
  local folder="$out/$side"
  local -a environment=(env -u VORN_VERBOSE -u VORN_DEBUG_LOG -u VORN_ILP64 OPENBLAS_NUM_THREADS=1)
  if [ "$side" = link ]; then
    environment+=(LD_PRELOAD="$gfortran_library $link_library" LD_LIBRARY_PATH="$gpu_folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}")
    ((ilp64)) && environment+=(VORN_ILP64=1)
  fi
  start=$(date +%s.%N)
  (cd "$folder" && exec "${environment[@]}" timeout -k 10 "$limit" "$programs/$program" \
     <"$programs/$input" >"$name.out" 2>"$name.err")
  status=$?
  echo "$status" >"$folder/$name.rc"
  awk -v end="$(date +%s.%N)" -v start="$start" 'BEGIN { printf "%.2f\n", end - start }' >"$folder/$name.seconds"
  ((status == 0)) || echo "  $side: $program < $input ended with status $status" >&2
}
export -f run_pair
export out programs gfortran_library link_library gpu_folder ilp64 limit

# The longest programs first, so that the workers finish together.
order() {
  local pair
  for pair in "${pairs[@]}"; do
    set -- $pair  # split into its four words
    case $2 in [sdcz]test | [sdcz]sep | [sdcz]se2 | [sdcz]svd | [sdcz]sg | [sdcz]gd | [sdcz]ed) echo "0 $pair" ;;
               *) echo "1 $pair" ;; esac
  done | sort -s -k1,1 | cut -d' ' -f2-
}

if ((compare_only)); then
  echo "comparing the outputs in $out"
else
  rm -rf "$out"
  mkdir -p "$out/$alone" "$out/link"
  echo "running ${#pairs[@]} program/input pairs twice, $jobs at a time; outputs in $out"
  start=$SECONDS
  order | while read -r group name program input; do
    echo "$alone $name $program $input"
    echo "link $name $program $input"
  done | xargs -P "$jobs" -L 1 bash -c 'run_pair "$@"' run_pair
  elapsed=$((SECONDS - start))
fi

# Counts of one output: tests run, failed, passed, INFO reports, unreadable
# counts, whether it reached its end, error-exit reports, lines of the isolated
# OpenBLAS's xerbla, lines of the link library's log.
#  - run: the N of "(  N tests run)" lines, as lapack_testing.py counts them (a
#    path with failures prints "K out of N tests failed ..." instead, whose N it
#    does not count); for the balancing programs, "total number of examples
#    tested = N";
#  - failed: the K of "K out of N tests failed" lines;
#  - passed: run plus N - K of those lines, every check that passed;
#  - info: lines reporting a routine that returned an unexpected INFO (lines
#    with " INFO", as lapack_testing.py counts them);
#  - bad: count lines whose numbers cannot be read (a Fortran field too narrow
#    prints asterisks);
#  - ended: 1 when the program printed "End of tests", after its last input.
count() {
  awk '
    function number(field) { sub(/^\(/, "", field); return field ~ /^[0-9]+$/ ? field : -1 }
    /tests run\)/ {
      for (i = 1; i <= NF; i++) if ($i == "run)") { n = i > 2 ? number($(i - 2)) : -1; if (n < 0) bad++; else run += n }
    }
    /total number of examples tested/ { n = number($NF); if (n < 0) bad++; else run += n }
    / out of / && /failed/ {
      for (i = 1; i <= NF; i++) if ($i == "out" && $(i + 1) == "of") {
        k = i > 1 ? number($(i - 1)) : -1; n = number($(i + 2))
        if (k < 0 || n < 0) bad++; else { failed += k; outof += n }
      }
    }
    / INFO/ { info++ }
    /^ *End of tests/ { ended = 1 }
    /Illegal value of parameter number .* not detected by/ || /XERBLA was called/ { exits++ }
    /^ \*\* On entry to .* had an illegal value/ { own++ }
    /^vorn error/ { vorn++ }
    END { printf "%d %d %d %d %d %d %d %d %d\n", run, failed, run + outof - failed, info, bad, ended, exits, own, vorn }' "$1"
}

# How a run ended, from its exit status (run_pair's .rc file, or "none").
ending() {
  case $1 in
    none) echo "no exit status" ;;
    124) echo "timed out" ;;
    125 | 126 | 127) echo "could not start (status $1)" ;;
    *) if (($1 > 128)); then echo "killed by signal $(($1 - 128)) (SIG$(kill -l $(($1 - 128)) 2>/dev/null))"
       else echo "exit status $1"; fi ;;
  esac
}

# Its arguments joined with ", ".
joined() {
  local text
  text=$(printf '%s, ' "$@")
  echo "${text%, }"
}

# Each pair is judged on its own. The linked run passes when at least as many
# checks pass as in the run alone and no more fail; a pair where it does better
# is a note, not a regression. The counts cannot be required to agree: which
# checks OpenBLAS fails depends on the kernels it picks for the processor (with
# --ilp64 the run alone has the reference BLAS, the linked run OpenBLAS's
# kernels for the routines the link library exports), and the routines the link library exports run in the isolated OpenBLAS, which
# answers ILAENV itself (its block sizes and algorithm choices, not the ones the
# test program's own ILAENV asks for). Passed checks are compared, not all the
# checks made: some checks count only when they fail (xDRVEV's test 5, whether
# eigenvalues change when eigenvectors are computed too), so a run that fails
# fewer of them makes fewer checks.
#
# Pairs known to do worse, with the cause: a pair listed here that does worse is
# printed with its cause and does not fail the run. Only the 64-bit programs
# have such pairs. The link library treats an ILP64 caller's integer arrays and
# integer outputs only where its packing table has a row for the routine; these
# pairs meet routines where that table falls short:
#  - xSYTRS2, xSYTRI2, xSYTRI2X, xSYCONV and (c, z) xHETRS2, xHETRI2, xHETRI2X
#    have no row, so their IPIV reaches the 32-bit CPU library as 64-bit
#    elements: it reads 1, 0, 2, 0, ... for 1, 2, ... and swaps rows and columns
#    out of range. The xSY and xHE paths of the linear equation programs fail
#    their checks and then crash in the program's own xSWAP with an index out of
#    range; every path after them is lost.
#  - xBDSDC packs and unpacks IQ with 3*BLVL*N elements whatever COMPQ says, so
#    a caller that passes a one-element IQ with COMPQ = 'N' has its stack
#    overwritten: xCHKBD does (s, d), and so does the reference CGESDD/ZGESDD,
#    which the link library does not export, calling SBDSDC/DBDSDC (c, z). The
#    program aborts with "stack smashing detected" or INFO reads as garbage.
#  - xSTEVR (also xSYEVR, xHEEVR, xSTEGR, xSTEMR) unpacks ISUPPZ with 2*max(M,1)
#    elements read from M after the call, also when the call returned an
#    illegal-argument INFO without setting M. xERRST passes an M that it never
#    set: where its garbage is large the unpack runs off ISUPPZ (DSTEVR in
#    xeigtstd < se2.in dies with a segmentation fault; xeigtsts got small
#    garbage in our runs).
#  - xLAPMR has no row, so its permutation K reaches the CPU library as 64-bit
#    elements; the 32-bit view holds zeros, and the cycle walk over K never ends.
#    The CS decomposition tests hang in it until the time limit.
declare -A known=()
if ((ilp64)); then
  for p in s d c z; do
    case $p in s|d) two="${p^^}SYTRS2 and ${p^^}SYTRI2" ;; *) two="${p^^}SYTRS2, ${p^^}SYTRI2, ${p^^}HETRS2 and ${p^^}HETRI2" ;; esac
    known["xlintst$p ${p}test.in"]="$two have no packing row: IPIV read as 32-bit, out-of-range swaps, crash"
    known["xeigtst$p svd.in"]="xBDSDC packs IQ with 3*BLVL*N elements also with COMPQ = 'N', where the caller's IQ has one"
    known["xeigtst$p csd.in"]="${p^^}LAPMR has no packing row: K read as 32-bit, endless cycle walk"
    [[ $p == [sd] ]] && known["xeigtst$p se2.in"]="${p^^}STEVR unpacks ISUPPZ with the M that an illegal-argument return left unset"
  done
fi

declare -A run failed exits own vorn abnormal seconds verdict
declare -A R F P I B E rcs present how
status=0
notes=() regressions=() known_lines=()
for pair in "${pairs[@]}"; do
  set -- $pair  # split into its four words
  group=$1 name=$2 program=$3 input=$4
  for side in alone link; do
    folder=$out/link
    [ "$side" = link ] || folder=$out/$alone
    file="$folder/$name.out"
    present[$side]=0 R[$side]=0 F[$side]=0 P[$side]=0 I[$side]=0 B[$side]=0 E[$side]=0 e=0 o=0 v=0
    if [ -f "$file" ]; then
      present[$side]=1
      read -r R[$side] F[$side] P[$side] I[$side] B[$side] E[$side] e o v < <(count "$file")
    fi
    rc=$(cat "$folder/$name.rc" 2>/dev/null); [[ $rc =~ ^[0-9]+$ ]] || rc=none
    rcs[$side]=$rc
    key="$side $group"
    run[$key]=$((${run[$key]:-0} + R[$side])); failed[$key]=$((${failed[$key]:-0} + F[$side]))
    exits[$key]=$((${exits[$key]:-0} + e)); own[$key]=$((${own[$key]:-0} + o)); vorn[$key]=$((${vorn[$key]:-0} + v))
    seconds[$side]=$(awk -v a="${seconds[$side]:-0}" '{ a += $1 } END { print a }' "$folder/$name.seconds" 2>/dev/null)
    # Everything abnormal about this run, for the report.
    h=()
    [ "$rc" = 0 ] || h+=("$(ending "$rc")")
    ((present[$side])) || h+=("no output")
    ((present[$side] && !E[$side])) && h+=("output stops before \"End of tests\"")
    ((B[$side])) && h+=("unreadable count lines: ${B[$side]}")
    how[$side]=""
    ((${#h[@]})) && how[$side]=" ($(joined "${h[@]}"))"
    [ -z "${how[$side]}" ] || abnormal[$key]=$((${abnormal[$key]:-0} + 1))
  done

  # What makes the linked run worse. A crash, a signal or the time limit always
  # does; a non-zero exit status, an output cut short or unreadable counts do
  # unless the run alone ended the same way.
  worse=()
  rc=${rcs[link]}
  if [ "$rc" = none ] || ((rc > 123)); then
    worse+=("$(ending "$rc")")
  elif ((rc != 0)) && [ "${rcs[alone]}" = 0 ]; then
    worse+=("$(ending "$rc") where alone it was 0")
  fi
  ((present[link])) || worse+=("no output")
  ((present[link] && !E[link] && E[alone])) && worse+=("output stops before \"End of tests\"")
  ((B[link] > B[alone])) && worse+=("unreadable count lines")
  ((P[link] < P[alone])) && worse+=("fewer passed")
  ((F[link] > F[alone])) && worse+=("more failed")
  ((I[link] > I[alone])) && worse+=("more INFO reports")
  # The balancing programs apply no threshold: their whole report must agree.
  case $name in
    *bal | *bak)
      cmp -s <(grep -v "Total time used" "$out/$alone/$name.out" 2>/dev/null) \
             <(grep -v "Total time used" "$out/link/$name.out" 2>/dev/null) || worse+=("reports differ") ;;
  esac

  line="$program < $input: alone ${P[alone]} passed, ${F[alone]} failed${how[alone]}; linked ${P[link]} passed, ${F[link]} failed${how[link]}"
  [ "${I[alone]}" = "${I[link]}" ] || line+="; INFO reports ${I[alone]} alone, ${I[link]} linked"
  if ((${#worse[@]})); then
    line+=": WORSE: $(joined "${worse[@]}")"
    # The first line a failed program wrote on standard error says how it ended.
    [ -z "${how[link]}" ] || [ ! -s "$out/link/$name.err" ] || line+="; stderr: $(head -n 1 "$out/link/$name.err")"
    if [ -n "${known["$program $input"]:-}" ]; then
      known_lines+=("$line; known: ${known["$program $input"]}")
      [ "${verdict[$group]:-}" = WORSE ] || verdict[$group]="known worse"
    else
      regressions+=("$line")
      verdict[$group]=WORSE
    fi
  elif [ "${P[alone]} ${F[alone]} ${I[alone]}" != "${P[link]} ${F[link]} ${I[link]}" ] ||
       [ -n "${how[alone]}${how[link]}" ]; then
    notes+=("$line")
    [ "${verdict[$group]:-}" = WORSE ] || verdict[$group]="not worse"
  fi
done

echo
printf '%-16s | %-30s | %-30s | %s\n' "" "$alone_title" "link library preloaded" ""
printf '%-16s | %10s %8s %10s | %10s %8s %10s | %s\n' group "run" "failed" "err-exit" "run" "failed" "err-exit" "linked run"
total=(0 0 0 0 0 0)
for group in $groups; do
  a="alone $group" b="link $group"
  note=""
  ((${abnormal[$a]:-0} + ${abnormal[$b]:-0})) && note+="; abnormal ends ${abnormal[$a]:-0} alone, ${abnormal[$b]:-0} linked"
  ((${vorn[$b]:-0})) && note+="; ${vorn[$b]} vorn error lines"
  printf '%-16s | %10d %8d %10d | %10d %8d %10d | %s%s\n' "$group" "${run[$a]}" "${failed[$a]}" "${exits[$a]}" \
    "${run[$b]}" "${failed[$b]}" "${exits[$b]}" "${verdict[$group]:-same}" "$note"
  total=($((total[0] + run[$a])) $((total[1] + failed[$a])) $((total[2] + exits[$a]))
         $((total[3] + run[$b])) $((total[4] + failed[$b])) $((total[5] + exits[$b])))
done
printf '%-16s | %10d %8d %10d | %10d %8d %10d |\n' total "${total[@]}"

own_total=0
for group in $groups; do own_total=$((own_total + ${own["link $group"]:-0})); done
echo
echo "error-exit reports under the link library: ${total[5]} (${alone_title%% alone} alone: ${total[2]}); the isolated"
echo "OpenBLAS printed $own_total lines of its own xerbla_. Each report is an illegal argument that the"
echo "program expected its xerbla_ to see, passed to a routine the link library exports."
((compare_only)) || printf 'ran in %d s; ' "$elapsed"
printf 'program time %.0f s alone, %.0f s with the link library\n' "${seconds[alone]:-0}" "${seconds[link]:-0}"
echo
if ((${#notes[@]})); then
  echo "pairs whose counts differ where the linked run is not worse (not regressions):"
  printf '  note: %s\n' "${notes[@]}"
fi
if ((${#known_lines[@]})); then
  echo "pairs known to do worse under the link library (not counted as regressions):"
  printf '  %s\n' "${known_lines[@]}"
fi
if ((${#regressions[@]})); then
  echo "pairs where the linked run is worse or ended abnormally:"
  printf '  %s\n' "${regressions[@]}"
  status=1
else
  echo "no pair passed fewer checks, failed more or ended abnormally under the link library"
fi
exit $status
