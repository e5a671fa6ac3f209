#!/usr/bin/env bash
# Runs Debian's reference LAPACK test programs (package liblapack-test) three
# times: against the system's LAPACK alone (OpenBLAS); with the link library
# preloaded in front of it, as an application would use it (the linked run); and
# preloaded with VORN_GPU_ALWAYS=1 (the GPU-always run), so that every routed
# routine runs on the GPU library whatever its size (here the emulator of the
# build, which computes in the CPU library): each routed routine's arguments
# then pass through the GPU library with the programs' own matrices, the
# illegal ones of the error-exit tests included. With --ilp64 it runs the same
# programs built with 64-bit default integers instead (package
# liblapack64-test, /usr/lib/x86_64-linux-gnu/lapack64) twice: alone, against
# the reference LAPACK and BLAS built the same way (liblapack64, libblas64), and
# with the link library preloaded and VORN_ILP64=1, so that the link library
# serves 64-bit integers over its 32-bit CPU library. Prints per precision and
# program group the tests run, the tests that failed to pass the threshold and
# the error-exit reports of each run, and exits non-zero when, for any
# program/input pair, the linked run or the GPU-always run does worse than the
# run alone: fewer tests passed, more failed, more routines returning an
# unexpected INFO, or an abnormal end (killed by a signal or the time limit, a
# non-zero exit status where the run alone exited with 0, output missing, cut
# short or with a count that cannot be read). A pair where either does better
# is listed as a note. Below, what is said of the linked run holds for the
# GPU-always run too, unless it is named.
#
# Illegal-argument reports outside the error-exit checks (below) are counted:
# the lines of the isolated OpenBLAS's own xerbla_, which the CPU library calls
# only where the program has no XERBLA of its own, and the programs' own XERBLA
# called while no error-exit check expected it. The linked run is worse where it
# has more of them than the run alone (the program's XERBLA was not reached, or a
# routine refused a call that the program's LAPACK took), the GPU-always run
# where it has more than the linked run: a routine on the GPU library refused a
# call that on the CPU side it took, the mark of an argument passed wrongly on
# the way, which the programs often do not see (they do not check the INFO of
# every call).
#
# In the GPU-always run two pairs are allowed to do worse, and are printed as
# allowed with their cause: xlintstds < dstest.in and xlintstzc < zctest.in.
# On a GPU pass DSGESV and ZCGESV give ITER no value (their GPU functions have
# no such argument, and the link library leaves ITER as the caller set it),
# while DDRVAB and ZDRVAB read ITER to learn whether the solver fell back to
# double precision (ITER < 0): then A holds its LU factors, the test restores A
# from its copy before it checks the residual, and the looser bound applies.
# Their ITER is never set in this run, so after each fall-back (the
# ill-conditioned and scaled matrix types) the residual is checked with the LU
# factors in place of A, against the tighter bound: 53 checks of each program
# fail. An allowed pair must still end normally; any other pair, or an
# abnormal end, is a regression.
#
# With --ilp64 two more rules apply. A pair whose linked run is known to hang is
# not run on either side; it is printed as "not run" with its cause and left out
# of the comparison and the counts. A pair whose linked run does worse than the
# run alone, but no worse than OpenBLAS alone does in the 32-bit programs' run of
# the same pair, is explained as OpenBLAS's own results: the linked run computes
# in OpenBLAS, the run alone in the reference BLAS, so their small numerical
# failures differ by processor (OpenBLAS 0.3.21's SCASUM for Cooperlake, for one,
# sums wrongly from 9 elements on, and CHSEIN in xeigtstc < nep.in then fails to
# converge there, 32-bit or not). Such a pair is printed as explained and does
# not fail the run. The 32-bit outputs come from the 32-bit run of this script
# (BUILD_DIR/reference-lapack/openblas); a pair that has none there is run
# 32-bit against OpenBLAS alone when it is needed, into
# BUILD_DIR/reference-lapack64/openblas32.
#
#   tools/reference-lapack.sh [-j JOBS] [--ilp64] [--compare-only] [BUILD_DIR]
#
# BUILD_DIR (default ./build) must hold the built libvorn_lapack_link.so,
# liblapackcpu.so, liblapackcpu_hooks.so and
# backends/vorn-emulator/libvorn_lapack.so. JOBS (default 2) programs run at a
# time. The outputs go to BUILD_DIR/reference-lapack/openblas,
# .../link and .../gpu (with --ilp64 BUILD_DIR/reference-lapack64/reference,
# .../link and the 32-bit runs it needed in .../openblas32),
# NAME.out named as lapack_testing.py expects them (snep.out, dtest.out,
# zctest.out, ctest_rfp.out, ...), so that
#   /usr/bin/python3 /usr/lib/x86_64-linux-gnu/lapack/lapack_testing.py -d DIR -s
# sums any of the folders; the counts here are the same, plus the balancing programs
# (sbal.out, sbak.out, sgbal.out, sgbak.out, ...) that it leaves out.
# --compare-only runs nothing: it compares the outputs an earlier run left in
# BUILD_DIR/reference-lapack (or reference-lapack64) again.
#
# Error-exit reports are the lines a program prints when, after an illegal
# argument, its own xerbla_ was not called ("*** Illegal value of parameter
# number N not detected by X ***") or was called with another name or number
# ("*** XERBLA was called ..."). Under the link library each routine it exports
# runs in the OpenBLAS that the CPU library loads in a namespace of its own, and
# that OpenBLAS's calls of xerbla_ and ILAENV reach the program's own (the
# 64-bit programs' with their integers widened), so the linked run is worse
# where it has more of these reports than the run alone. In the
# GPU-always run a routine that the GPU library answers with status 8 reports
# through INFO alone, without a call of xerbla_: those reports are expected
# there; they are counted, not compared.
#
# Exit status: 0 no pair does worse with the link library (linked or GPU
# always, the known and the allowed pairs aside), 1 some pair does, 2 no build
# (or, with --compare-only, no earlier outputs), 77 the test programs are not
# installed and cannot be.
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
# With --ilp64, the 32-bit programs (programs32) run against OpenBLAS alone are
# the measure of OpenBLAS's own results; their outputs are looked for in out32
# (the 32-bit run of this script), then in OUT/openblas32.
programs32=/usr/lib/x86_64-linux-gnu/lapack limit32=900
if ((ilp64)); then
  programs=/usr/lib/x86_64-linux-gnu/lapack64 package=liblapack64-test limit=240
  out="$build/reference-lapack64" alone=reference alone_title="reference LAPACK alone"
  out32="$build/reference-lapack/openblas"
else
  programs=/usr/lib/x86_64-linux-gnu/lapack package=liblapack-test limit=900
  out="$build/reference-lapack" alone=openblas alone_title="OpenBLAS alone"
fi
# The runs are the sides: the run alone, "link" and, in the 32-bit run, "gpu".
sides="$alone link"
((ilp64)) || sides+=" gpu"
link_library="$build/libvorn_lapack_link.so"
# gfortran's callers take complex function results from registers and use the
# later form of syswapr/heswapr: this library, preloaded first, serves them.
gfortran_library="$build/libvorn_lapack_gfortran.so"
gpu_folder="$build/backends/vorn-emulator"
if ((compare_only)); then
  for side in $sides; do
    [ -d "$out/$side" ] || { echo "no earlier outputs in $out/$side" >&2; exit 2; }
  done
else
  source "$root/tools/packages.sh"
  ensure_packages "$package" || true
  # The 32-bit programs are only needed to explain a pair; without them the
  # pairs that would need them stay unexplained.
  if ((ilp64)); then ensure_packages liblapack-test || true; fi
  [ -x "$programs/xlintsts" ] || { echo "$package is not installed and cannot be installed here" >&2; exit 77; }
  for file in "$link_library" "$gfortran_library" "$build/liblapackcpu.so" "$build/liblapackcpu_hooks.so" "$gpu_folder/libvorn_lapack.so"; do
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
# takes under 40 s). The pairs known to hang are not run at all (see not_run
# below). No VORN_ variable of the caller's environment reaches a run. The
# linked run of the 64-bit programs sets VORN_ILP64=1, the side gpu
# VORN_GPU_ALWAYS=1; no other run sets either. The side openblas32 (with --ilp64
# only) runs the 32-bit program of the pair against OpenBLAS alone.
run_pair() {
  local side=$1 name=$2 program=$3 input=$4 status start variable
  local folder="$out/$side" from=$programs seconds=$limit
  local -a environment=(env)
  for variable in $(compgen -e VORN_); do environment+=(-u "$variable"); done
  environment+=(OPENBLAS_NUM_THREADS=1)
  if [ "$side" = link ] || [ "$side" = gpu ]; then
    environment+=(LD_PRELOAD="$gfortran_library $link_library" LD_LIBRARY_PATH="$gpu_folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}")
    ((ilp64)) && environment+=(VORN_ILP64=1)
    [ "$side" = link ] || environment+=(VORN_GPU_ALWAYS=1)
  fi
  [ "$side" = openblas32 ] && from=$programs32 seconds=$limit32
  mkdir -p "$folder"
  start=$(date +%s.%N)
  (cd "$folder" && exec "${environment[@]}" timeout -k 10 "$seconds" "$from/$program" \
     <"$from/$input" >"$name.out" 2>"$name.err")
  status=$?
  echo "$status" >"$folder/$name.rc"
  awk -v end="$(date +%s.%N)" -v start="$start" 'BEGIN { printf "%.2f\n", end - start }' >"$folder/$name.seconds"
  ((status == 0)) || echo "  $side: $program < $input ended with status $status" >&2
}
export -f run_pair
export out programs programs32 gfortran_library link_library gpu_folder ilp64 limit limit32

# Pairs known to do worse, with the cause: a pair listed here that does worse is
# printed with its cause and does not fail the run. Only the 64-bit programs
# have such pairs. Each follows from a rule of the link library's design for
# ILP64 callers: integer arguments are treated only where the packing table has
# a row for the routine (a routine without a row gets only INFO cleared), a
# length in the table is a limit the caller must respect, and negative integer
# results come back zero-extended.
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
#  - DSGESV, DSPOSV, ZCGESV and ZCPOSV return ITER < 0 when they fall back to
#    double precision (-2, -3 and -31 in these tests). Zero-extended, ITER = -3
#    reads as 4294967293, so the test program takes the fall-back for a
#    refinement that worked: it checks the residual against the tighter bound
#    for ITER >= 0 and, for xSGESV, with A not restored from its copy, so that
#    the LU factors the fall-back left in A enter the residual.
# One pair is known to do worse for a fault of OpenBLAS, not of the link library:
#  - OpenBLAS's ZDOTU (0.3.21, its Haswell and Cooperlake kernels) with
#    INCX > 1 reads the element one stride past X's last. ZSYL01 (xeigtstz <
#    zec.in) calls ZTRSYL with M = 185 on its array A(185,185), which in the
#    64-bit program lies at the end of the program's zero-initialised data:
#    ZTRSYL's ZDOTU over row 184 reads A(184,186), past the mapping, and the
#    program dies with a segmentation fault. The 32-bit program lays its arrays
#    out otherwise, and the reference BLAS of the 64-bit run alone reads
#    nothing past X.
#
# Pairs not run, with the cause: pairs whose linked run is known to hang. With
# --ilp64 they are run on neither side (a hang would cost the time limit on
# every run) and are left out of the comparison and the counts.
#  - xLAPMR has no row, so its permutation K reaches the CPU library as 64-bit
#    elements; the 32-bit view holds zeros, and the cycle walk over K never ends.
#    The CS decomposition tests (xCSDTS, through xORCSD2BY1/xUNCSD2BY1) hang in
#    it.
declare -A known=() not_run=()
if ((ilp64)); then
  for p in s d c z; do
    case $p in s|d) two="${p^^}SYTRS2 and ${p^^}SYTRI2" ;; *) two="${p^^}SYTRS2, ${p^^}SYTRI2, ${p^^}HETRS2 and ${p^^}HETRI2" ;; esac
    known["xlintst$p ${p}test.in"]="$two have no packing row: IPIV read as 32-bit, out-of-range swaps, crash"
    known["xeigtst$p svd.in"]="xBDSDC packs IQ with 3*BLVL*N elements also with COMPQ = 'N', where the caller's IQ has one"
    not_run["xeigtst$p csd.in"]="${p^^}LAPMR has no packing row: K read as 32-bit, endless cycle walk (hangs)"
  done
  for pair in "ds DSGESV DSPOSV" "zc ZCGESV ZCPOSV"; do
    set -- $pair
    known["xlintst$1 ${1}test.in"]="ITER < 0 of $2 and $3 comes back zero-extended (-3 reads as 4294967293): the test takes the double-precision fall-back for a refinement that worked and checks it against the tighter bound"
  done
  known["xeigtstz zec.in"]="OpenBLAS's ZDOTU with INCX > 1 reads one element past X; ZTRSYL, called by ZSYL01 with M = 185, reads past A(185,185) at the end of the 64-bit program's data"
fi

# Pairs of the GPU-always run allowed to do worse, with the cause (see the top):
# printed as allowed where they do, provided they end normally.
declare -A gpu_allowed=()
if ((!ilp64)); then
  for pair in "ds DSGESV DDRVAB" "zc ZCGESV ZDRVAB"; do
    set -- $pair
    gpu_allowed["xlintst$1 ${1}test.in"]="$2 on the GPU gives ITER no value, and $3, reading an ITER never set, checks the residual of a double-precision fall-back with the LU factors in place of A"
  done
fi

# Its arguments joined with ", ".
joined() {
  local text
  text=$(printf '%s, ' "$@")
  echo "${text%, }"
}

# The longest programs first, so that the workers finish together.
order() {
  local pair
  for pair in "${pairs[@]}"; do
    set -- $pair  # split into its four words
    [ -z "${not_run["$3 $4"]:-}" ] || continue
    case $2 in [sdcz]test | [sdcz]sep | [sdcz]se2 | [sdcz]svd | [sdcz]sg | [sdcz]gd | [sdcz]ed) echo "0 $pair" ;;
               *) echo "1 $pair" ;; esac
  done | sort -s -k1,1 | cut -d' ' -f2-
}

if ((compare_only)); then
  echo "comparing the outputs in $out"
else
  rm -rf "$out"
  for side in $sides; do mkdir -p "$out/$side"; done
  set -- $sides
  echo "running $((${#pairs[@]} - ${#not_run[@]})) program/input pairs $# times ($(joined $sides)), $jobs at a time; outputs in $out"
  start=$SECONDS
  order | while read -r group name program input; do
    for side in $sides; do echo "$side $name $program $input"; done
  done | xargs -P "$jobs" -L 1 bash -c 'run_pair "$@"' run_pair
  elapsed=$((SECONDS - start))
fi

# Counts of one output: tests run, failed, passed, INFO reports, unreadable
# counts, whether it reached its end, error-exit reports, illegal-argument
# reports outside the error-exit checks (the isolated OpenBLAS's own xerbla_'s
# " ** On entry to ..." and the programs' XERBLA's " *** On entry to ..."),
# lines of the link library's log.
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
    /^ \*\*\*? On entry to .* had an illegal value/ { own++ }
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

# Each pair is judged on its own. The linked run passes when at least as many
# checks pass as in the run alone and no more fail; a pair where it does better
# is a note, not a regression. The counts cannot be required to agree: which
# checks OpenBLAS fails depends on the kernels it picks for the processor (with
# --ilp64 the run alone has the reference BLAS, the linked run OpenBLAS's
# kernels for the routines the link library exports). Passed checks are compared, not all the
# checks made: some checks count only when they fail (xDRVEV's test 5, whether
# eigenvalues change when eigenvectors are computed too), so a run that fails
# fewer of them makes fewer checks.
#
declare -A run failed exits own vorn abnormal seconds verdict gpu_verdict skipped
declare -A R F P I B E X O rcs present how
status=0
notes=() regressions=() known_lines=() explained_lines=() allowed_lines=() not_run_lines=() ran32=0 seconds32=0

# The counts of one output into R, F, P, I, B, E, present, rcs and how under the
# key SIDE, and its error-exit, other illegal-argument and log lines into e, o
# (also X and O under the key SIDE) and v:
#   measure SIDE FOLDER NAME
measure() {
  local side=$1 file="$2/$3.out" rc h=()
  present[$side]=0 R[$side]=0 F[$side]=0 P[$side]=0 I[$side]=0 B[$side]=0 E[$side]=0 e=0 o=0 v=0
  if [ -f "$file" ]; then
    present[$side]=1
    read -r R[$side] F[$side] P[$side] I[$side] B[$side] E[$side] e o v < <(count "$file")
  fi
  X[$side]=$e O[$side]=$o
  rc=$(cat "$2/$3.rc" 2>/dev/null); [[ $rc =~ ^[0-9]+$ ]] || rc=none
  rcs[$side]=$rc
  # Everything abnormal about this run, for the report.
  [ "$rc" = 0 ] || h+=("$(ending "$rc")")
  ((present[$side])) || h+=("no output")
  ((present[$side] && !E[$side])) && h+=("output stops before \"End of tests\"")
  ((B[$side])) && h+=("unreadable count lines: ${B[$side]}")
  how[$side]=""
  ((${#h[@]})) && how[$side]=" ($(joined "${h[@]}"))"
}

# What makes the run SIDE worse than the run BASE (both measured), into worse:
#   judge BASE SIDE BASE_FOLDER SIDE_FOLDER NAME BASE_TITLE
# A crash, a signal or the time limit always does; a non-zero exit status, an
# output cut short or unreadable counts do unless the base run ended the same way.
judge() {
  local base=$1 side=$2 rc=${rcs[$2]}
  worse=()
  if [ "$rc" = none ] || ((rc > 123)); then
    worse+=("$(ending "$rc")")
  elif ((rc != 0)) && [ "${rcs[$base]}" = 0 ]; then
    worse+=("$(ending "$rc") where $6 it was 0")
  fi
  ((present[$side])) || worse+=("no output")
  ((present[$side] && !E[$side] && E[$base])) && worse+=("output stops before \"End of tests\"")
  ((B[$side] > B[$base])) && worse+=("unreadable count lines")
  ((P[$side] < P[$base])) && worse+=("fewer passed")
  ((F[$side] > F[$base])) && worse+=("more failed")
  ((I[$side] > I[$base])) && worse+=("more INFO reports")
  # The balancing programs apply no threshold: their whole report must agree.
  case $5 in
    *bal | *bak)
      cmp -s <(grep -v "Total time used" "$3/$5.out" 2>/dev/null) \
             <(grep -v "Total time used" "$4/$5.out" 2>/dev/null) || worse+=("reports differ") ;;
  esac
}

# The report line of a pair for the run SIDE (measured, as is the run alone),
# which the report calls TITLE, into line:
#   describe SIDE TITLE
describe() {
  line="$program < $input: alone ${P[alone]} passed, ${F[alone]} failed${how[alone]}; $2 ${P[$1]} passed, ${F[$1]} failed${how[$1]}"
  [ "${I[alone]}" = "${I[$1]}" ] || line+="; INFO reports ${I[alone]} alone, ${I[$1]} $2"
}

# Adds to line what makes the run SIDE worse (judge's worse) and, where it ended
# abnormally, the first line it wrote on standard error, which says how it ended:
#   mark_worse SIDE
mark_worse() {
  line+=": WORSE: $(joined "${worse[@]}")"
  [ -z "${how[$1]}" ] || ! grep -q . "$out/$1/$name.err" 2>/dev/null ||
    line+="; stderr: $(grep -m 1 . "$out/$1/$name.err")"
}

# Whether the run SIDE, not worse than the run alone, differs from it in its
# counts or its ending (a note):
#   differs SIDE
differs() {
  [ "${P[alone]} ${F[alone]} ${I[alone]}" != "${P[$1]} ${F[$1]} ${I[$1]}" ] || [ -n "${how[alone]}${how[$1]}" ]
}

# The folder that holds the 32-bit OpenBLAS-alone output of a pair (NAME PROGRAM
# INPUT), into folder32: the 32-bit run of this script, or OUT/openblas32, where
# the pair is run now if neither has it (not with --compare-only). Empty when
# there is none.
find_32bit() {
  folder32=""
  if [ -f "$out32/$1.rc" ]; then
    folder32=$out32
  elif [ -f "$out/openblas32/$1.rc" ]; then
    folder32=$out/openblas32
  elif ((!compare_only)) && [ -x "$programs32/$2" ]; then
    local start=$SECONDS
    echo "running $2 < $3 of the 32-bit programs against OpenBLAS alone, to compare with"
    run_pair openblas32 "$1" "$2" "$3"
    folder32=$out/openblas32 ran32=$((ran32 + 1)) seconds32=$((seconds32 + SECONDS - start))
  fi
}

# The linked run of the pair (the loop's group, name, program and input)
# against the run alone, both measured: worse is a regression, but for a known
# pair or, with --ilp64, one explained as OpenBLAS's own results.
judge_linked() {
  local explained
  judge alone link "$out/$alone" "$out/link" "$name" alone
  ((X[link] > X[alone])) && worse+=("more error-exit reports (${X[link]}, alone ${X[alone]})")
  ((O[link] > O[alone])) && worse+=("more illegal-argument reports outside the error-exit checks (${O[link]}, alone ${O[alone]})")
  describe link linked
  if ((${#worse[@]})); then
    mark_worse link
    if [ -n "${known["$program $input"]:-}" ]; then
      known_lines+=("$line; known: ${known["$program $input"]}")
      [ "${verdict[$group]:-}" = WORSE ] || verdict[$group]="known worse"
      return
    fi
    # With --ilp64, the same pair of the 32-bit programs against OpenBLAS alone
    # shows OpenBLAS's own results: a linked run no worse than that is explained.
    explained=0
    if ((ilp64)); then
      find_32bit "$name" "$program" "$input"
      if [ -n "$folder32" ]; then
        measure openblas32 "$folder32" "$name"
        line+="; 32-bit OpenBLAS alone ${P[openblas32]} passed, ${F[openblas32]} failed${how[openblas32]}"
        [ "${I[openblas32]}" = "${I[link]}" ] || line+=", INFO reports ${I[openblas32]}"
        judge openblas32 link "$folder32" "$out/link" "$name" "OpenBLAS alone"
        if ((${#worse[@]})); then
          line+=": worse than that too: $(joined "${worse[@]}")"
        else
          explained=1
        fi
      else
        line+="; no 32-bit OpenBLAS output to compare with"
      fi
    fi
    if ((explained)); then
      explained_lines+=("$line")
      [[ ${verdict[$group]:-} == WORSE || ${verdict[$group]:-} == "known worse" ]] || verdict[$group]="as OpenBLAS"
    else
      regressions+=("$line")
      verdict[$group]=WORSE
    fi
  else
    # A known pair that is not worse: the entry no longer describes this run.
    [ -z "${known["$program $input"]:-}" ] || line+="; listed as known to do worse (${known["$program $input"]}) but is not"
    if differs link || [ -n "${known["$program $input"]:-}" ]; then
      notes+=("$line")
      [ -n "${verdict[$group]:-}" ] || verdict[$group]="not worse"
    fi
  fi
}

# The GPU-always run of the pair (the loop's group, name, program and input)
# against the run alone, and its xerbla lines against the linked run's, all
# measured: worse is a regression, but for an allowed pair that ended normally.
judge_gpu_always() {
  local allowed
  judge alone gpu "$out/$alone" "$out/gpu" "$name" alone
  ((O[gpu] > O[link])) && worse+=("more illegal-argument reports outside the error-exit checks (${O[gpu]}, linked ${O[link]})")
  describe gpu "GPU always"
  allowed=${gpu_allowed["$program $input"]:-}
  if ((${#worse[@]})); then
    mark_worse gpu
    if [ -n "$allowed" ] && [ -z "${how[gpu]}" ]; then
      allowed_lines+=("$line; allowed: $allowed")
      [ "${gpu_verdict[$group]:-}" = WORSE ] || gpu_verdict[$group]=allowed
    else
      regressions+=("$line")
      gpu_verdict[$group]=WORSE
    fi
  else
    [ -z "$allowed" ] || line+="; allowed to do worse ($allowed) but does not"
    if differs gpu || [ -n "$allowed" ]; then
      notes+=("$line")
      [ -n "${gpu_verdict[$group]:-}" ] || gpu_verdict[$group]="not worse"
    fi
  fi
}

for pair in "${pairs[@]}"; do
  set -- $pair  # split into its four words
  group=$1 name=$2 program=$3 input=$4
  if [ -n "${not_run["$program $input"]:-}" ]; then
    not_run_lines+=("$program < $input: not run: ${not_run["$program $input"]}")
    skipped[$group]=$((${skipped[$group]:-0} + 1))
    continue
  fi
  for side in alone link gpu; do
    folder=$out/$side
    case $side in alone) folder=$out/$alone ;; gpu) ((ilp64)) && continue ;; esac
    measure "$side" "$folder" "$name"
    key="$side $group"
    run[$key]=$((${run[$key]:-0} + R[$side])); failed[$key]=$((${failed[$key]:-0} + F[$side]))
    exits[$key]=$((${exits[$key]:-0} + e)); own[$key]=$((${own[$key]:-0} + o)); vorn[$key]=$((${vorn[$key]:-0} + v))
    seconds[$side]=$(awk -v a="${seconds[$side]:-0}" '{ a += $1 } END { print a }' "$folder/$name.seconds" 2>/dev/null)
    [ -z "${how[$side]}" ] || abnormal[$key]=$((${abnormal[$key]:-0} + 1))
  done

  judge_linked
  ((ilp64)) || judge_gpu_always
done

# The summary: per group, each run's tests run, failed and error-exit reports,
# then the verdicts of the linked run and, in the 32-bit run, the GPU-always run.
declare -A title=([alone]=$alone_title [link]="link library preloaded" [gpu]="preloaded, VORN_GPU_ALWAYS=1")
declare -A word=([alone]=alone [link]=linked [gpu]="GPU always")
declare -A total_run total_failed total_exits total_own
report_sides="alone link" verdicts="linked run"
((ilp64)) || report_sides+=" gpu" verdicts="linked run; GPU always"
echo
printf '%-16s' ""
for side in $report_sides; do printf ' | %-30s' "${title[$side]}"; done
printf ' |\n%-16s' group
for side in $report_sides; do printf ' | %10s %8s %10s' run failed err-exit; done
printf ' | %s\n' "$verdicts"
for group in $groups; do
  printf '%-16s' "$group"
  ends=() ended=0 logged=()
  for side in $report_sides; do
    key="$side $group"
    printf ' | %10d %8d %10d' "${run[$key]:-0}" "${failed[$key]:-0}" "${exits[$key]:-0}"
    total_run[$side]=$((${total_run[$side]:-0} + ${run[$key]:-0}))
    total_failed[$side]=$((${total_failed[$side]:-0} + ${failed[$key]:-0}))
    total_exits[$side]=$((${total_exits[$side]:-0} + ${exits[$key]:-0}))
    total_own[$side]=$((${total_own[$side]:-0} + ${own[$key]:-0}))
    ends+=("${abnormal[$key]:-0} ${word[$side]}") ended=$((ended + ${abnormal[$key]:-0}))
    ((${vorn[$key]:-0})) && logged+=("${vorn[$key]} ${word[$side]}")
  done
  note=""
  ((ended)) && note+="; abnormal ends $(joined "${ends[@]}")"
  ((${#logged[@]})) && note+="; vorn error lines $(joined "${logged[@]}")"
  ((${skipped[$group]:-0})) && note+="; not run: ${skipped[$group]}"
  verdict_text=${verdict[$group]:-same}
  ((ilp64)) || verdict_text+="; ${gpu_verdict[$group]:-same}"
  printf ' | %s%s\n' "$verdict_text" "$note"
done
printf '%-16s' total
for side in $report_sides; do
  printf ' | %10d %8d %10d' "${total_run[$side]}" "${total_failed[$side]}" "${total_exits[$side]}"
done
printf ' |\n'

under=() printed=() times=("$(printf '%.0f s alone' "${seconds[alone]:-0}")")
for side in ${report_sides#alone }; do
  under+=("${total_exits[$side]} ${word[$side]}")
  printed+=("${total_own[$side]} ${word[$side]}")
  times+=("$(printf '%.0f s %s' "${seconds[$side]:-0}" "${word[$side]}")")
done
echo
echo "error-exit reports under the link library: $(joined "${under[@]}") ($alone_title: ${total_exits[alone]});"
echo "illegal-argument reports outside the error-exit checks: $(joined "${printed[@]}"). Each error-exit report"
echo "is an illegal argument that the program expected its xerbla_ to see, passed to a routine the link library exports."
((compare_only)) || printf 'ran in %d s; ' "$elapsed"
echo "program time $(joined "${times[@]}")"
if ((ilp64 && ran32)); then
  printf '%d pairs of the 32-bit programs run against OpenBLAS alone to compare with, in %d s\n' "$ran32" "$seconds32"
fi
echo
# A heading and its lines, two spaces in; nothing (and status 1) without lines.
section() {
  local heading=$1
  shift
  (($#)) || return 1
  printf '%s\n' "$heading"
  printf '  %s\n' "$@"
}
section "pairs not run, known to hang under the link library (left out of the counts and the comparison):" \
  "${not_run_lines[@]}"
section "pairs whose counts differ where the linked or GPU-always run is not worse (not regressions):" \
  "${notes[@]/#/note: }"
section "pairs worse than the reference alone but no worse than OpenBLAS alone in the 32-bit run, explained
as OpenBLAS's own results (the linked run computes in OpenBLAS; not counted as regressions):" \
  "${explained_lines[@]}"
section "pairs known to do worse under the link library (not counted as regressions):" "${known_lines[@]}"
section "pairs allowed to do worse in the GPU-always run (not counted as regressions):" "${allowed_lines[@]}"
if section "pairs where the linked or GPU-always run is worse or ended abnormally:" "${regressions[@]}"; then
  status=1
else
  other=""
  ((${#known_lines[@]} + ${#allowed_lines[@]})) && other=" other"
  echo "no$other pair passed fewer checks, failed more or ended abnormally under the link library"
fi
exit $status
