#!/usr/bin/env bash
# The emulator through which ctest runs the Windows test programs.
#
# Wine maps a page of shared data at a fixed address in every new process. When
# the host's address randomisation has already placed something there, Wine exits
# with status 1 before the program starts, saying "wine: failed to map the shared
# user data" (about once in a thousand starts here, when many start at once). Such
# a start is tried again, up to three times; nothing of the program has run yet.
# Every other outcome, a failure of the program included, passes through as it is,
# with a line on standard error when the status is not 0: a program that ends
# before it prints anything otherwise leaves ctest's output empty.
errors=$(mktemp)
trap 'rm -f "$errors"' EXIT
for attempt in 1 2 3; do
  WINEDEBUG=-all,err+virtual /usr/lib/wine/wine64 "$@" 2>"$errors"
  status=$?
  if [ "$status" -eq 0 ] || ! grep -q "failed to map the shared user data" "$errors"; then break; fi
  echo "wine-run: Wine could not start $(basename "$1") (attempt $attempt)" >&2
done
cat "$errors" >&2
if [ "$status" -ne 0 ]; then
  echo "wine-run: $(basename "$1") ended with status $status" >&2
fi
exit "$status"
