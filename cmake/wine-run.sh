#!/usr/bin/env bash
# ctest's emulator for the Windows build: runs a program under Wine. Qt Test's output does
# not reach a pipe under Wine, so a test writes it to a file that is printed afterwards.
set -u
exe=$1
shift
wine=${VARNO_WINE:-$(command -v wine || echo /usr/lib/wine/wine64)}
case $(basename "$exe") in
  tst_*)
    out=$(mktemp --suffix=.txt)
    "$wine" "$exe" "$@" -o "Z:${out//\//\\},txt"
    rc=$?
    cat "$out"
    rm -f "$out"
    exit $rc
    ;;
  *) exec "$wine" "$exe" "$@" ;;
esac
