#!/usr/bin/env bash
# Checks the export and import tables of a Windows build's vorn_lapack_link.dll, as
# read back from the DLL itself with MinGW's objdump:
#  - module name vorn_lapack_link.dll;
#  - every export has a name, and names and ordinals are those of the .def file
#    the build generated, nothing more and nothing less;
#  - ordinals run 1..N in ascending byte order of the names;
#  - the names are the four spellings of every routine in the routine tables
#    (expanded here by the host preprocessor, not by the generator), lsame's four
#    and the four control calls;
#  - the DLL imports from KERNEL32.dll, msvcrt.dll and vorn_lapack.dll only.
#
# Usage: tools/check-windows-exports.sh BUILD_DIR
# OBJDUMP and HOST_CXX name other tools than x86_64-w64-mingw32-objdump and c++.
set -euo pipefail

if [ $# -ne 1 ]; then
  echo "usage: $0 BUILD_DIR" >&2
  exit 2
fi
build=$1
source_dir=$(cd "$(dirname "$0")/.." && pwd)
dll=$build/vorn_lapack_link.dll
def=$build/generated/vorn_lapack_link.def
objdump=${OBJDUMP:-x86_64-w64-mingw32-objdump}
host_cxx=${HOST_CXX:-c++}
export LC_ALL=C

for file in "$dll" "$def"; do
  [ -f "$file" ] || { echo "check-windows-exports: $file is missing" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
fail() {
  echo "check-windows-exports: $*" >&2
  status=1
}
# Shows the first lines of a difference between two sorted lists.
show_difference() {
  diff "$1" "$2" | grep '^[<>]' | head -20 | sed 's/^</  only in the first: /; s/^>/  only in the second:/' >&2 || true
}

"$objdump" -p "$dll" >"$work/headers"

# The .def file: the module line, EXPORTS, then one '"NAME" @ORDINAL' per line.
awk -v out="$work/def_exports" '
  NR == 1 { if (match($0, /^LIBRARY "[^"]*"$/)) module = substr($0, 10, length($0) - 10); next }
  NR == 2 && $0 == "EXPORTS" { next }
  /^  "[^"]+" @[0-9]+$/ { name = $1; gsub(/"/, "", name); print substr($2, 2), name > out; next }
  { print "unexpected line " NR ": " $0; bad = 1 }
  END { print "module " module; exit bad }
' "$def" >"$work/def_info" || { cat "$work/def_info" >&2; fail "$def is not in the expected form"; }
def_module=$(sed -n 's/^module //p' "$work/def_info")
[ "$def_module" = vorn_lapack_link.dll ] || fail "$def names module '$def_module'"

# The export table as objdump prints it: the module name, the ordinal base, the
# sizes of the address and name tables, then for each name pointer its ordinal
# (printed without the base, or as "+base[ORDINAL]" by newer binutils) and name.
awk -v out="$work/dll_exports" '
  /^The Export Tables/ { inside = 1; next }
  !inside { next }
  /^Name[ \t]/ { module = $NF; next }
  /^Ordinal Base/ { base = $NF; next }
  /^[ \t]*Export Address Table[ \t]+[0-9a-fA-F]+$/ && !addresses { addresses = $NF; next }
  /^[ \t]*\[Name Pointer\/Ordinal\] Table/ && !names { names = $NF; next }
  /^\[Ordinal\/Name Pointer\] Table/ { table = 1; next }
  table && /^[ \t]*$/ { table = 0; inside = 0; next }
  table {
    line = $0
    sub(/^[ \t]*\[ *[0-9]+\] */, "", line)
    ordinal = $0
    sub(/^[ \t]*\[ */, "", ordinal); sub(/\].*/, "", ordinal)
    ordinal += base
    if (match(line, /^\+base\[ *[0-9]+\] */)) {
      ordinal = substr(line, 7, RLENGTH - 6); sub(/\].*/, "", ordinal); ordinal += 0
      line = substr(line, RLENGTH + 1)
    }
    print ordinal, line > out
  }
  END { print "module " module; print "base " base; print "addresses " addresses; print "names " names }
' "$work/headers" >"$work/dll_info"
touch "$work/dll_exports"
dll_module=$(sed -n 's/^module //p' "$work/dll_info")
addresses=$(sed -n 's/^addresses //p' "$work/dll_info")
names=$(sed -n 's/^names //p' "$work/dll_info")
addresses=$((16#${addresses:-0}))  # objdump prints both sizes in hexadecimal
names=$((16#${names:-0}))
count=$(wc -l <"$work/dll_exports")
[ "$dll_module" = vorn_lapack_link.dll ] || fail "the DLL names itself '$dll_module', not vorn_lapack_link.dll"
[ "$count" -gt 0 ] || fail "no named exports read from $dll"
[ "$names" -eq "$count" ] || fail "the name table has $names entries, objdump listed $count"
[ "$addresses" -eq "$count" ] || fail "$addresses exported addresses for $count names: some export has no name"

# Names and ordinals, exactly as the .def file gives them.
sort "$work/def_exports" >"$work/def_sorted"
sort "$work/dll_exports" >"$work/dll_sorted"
if ! cmp -s "$work/def_sorted" "$work/dll_sorted"; then
  fail "the DLL's exports (second) differ from $def (first):"
  show_difference "$work/def_sorted" "$work/dll_sorted"
fi

# Ordinals 1..N in ascending byte order of the names, and no name twice.
sort -n -k1,1 "$work/dll_exports" | awk '
  $1 != NR { print "ordinal " $1 " where " NR " belongs (" $2 ")"; bad = 1 }
  NR > 1 && !($2 > previous) { print $2 " at ordinal " $1 " does not sort after " previous; bad = 1 }
  { previous = $2 }
  END { exit bad }
' >"$work/order" || { head -20 "$work/order" >&2; fail "ordinals are not 1..$count in byte order of the names"; }

# The names the routine tables call for, expanded by the host preprocessor.
{
  echo '#define FORWARDED(name, words, info) @name@'
  echo '#include "routines/cpu/forwarded_routines.inc"'
  echo '#undef FORWARDED'
  echo '#define LOGGED(name, ...) @name@'
  echo '#include "routines/cpu/logged_routines.inc"'
  echo '#undef LOGGED'
  echo '#define ROUTED(base, Root, words, gpuFunction) @base@'
  echo '#include "routines/routed/routed_routines.inc"'
} | "$host_cxx" -E -P -I"$source_dir" -x c++ - | grep -o '@[a-z0-9_]*@' | tr -d @ >"$work/bases"
echo lsame >>"$work/bases"
{
  printf '%s\n' vornLinkClearCpuAlways vornLinkClearGpuAlways vornLinkSetCpuAlways vornLinkSetGpuAlways
  awk '{ caps = toupper($0); print $0; print $0 "_"; print caps; print caps "_" }' "$work/bases"
} | sort >"$work/table_names"
cut -d' ' -f2 "$work/dll_exports" | sort >"$work/dll_names"
if ! cmp -s "$work/table_names" "$work/dll_names"; then
  fail "the DLL's export names (second) differ from the routine tables (first):"
  show_difference "$work/table_names" "$work/dll_names"
fi

# Imports: the system's C runtime and kernel, and the GPU library; nothing of
# MinGW's own runtime (libstdc++, libgcc, winpthread), which is linked in.
sed -n 's/^[ \t]*DLL Name: //p' "$work/headers" | sort -u >"$work/imports"
printf '%s\n' KERNEL32.dll msvcrt.dll vorn_lapack.dll | sort >"$work/allowed_imports"
if ! cmp -s "$work/allowed_imports" "$work/imports"; then
  fail "the DLL imports from (second) other modules than (first):"
  show_difference "$work/allowed_imports" "$work/imports"
fi

if [ "$status" -eq 0 ]; then
  echo "check-windows-exports: $dll: $count exports (ordinals 1..$count, $(wc -l <"$work/bases") routine bases), imports $(paste -sd' ' "$work/imports")"
fi
exit "$status"
