#!/usr/bin/env bash
# Runs one of Varno's libFuzzer targets (fuzz/) for a number of seconds.
#
#   tools/fuzz.sh --list                 the target names
#   tools/fuzz.sh TARGET SECONDS [ARGS]  build what is needed, then fuzz TARGET; extra
#                                        ARGS go to libFuzzer; a file among them is
#                                        replayed alone (tools/fuzz.sh fuzz_lyt 0 crash-…)
#
# The build lives in build-fuzz/ (clang, address and undefined-behaviour sanitizers). The
# seeds in fuzz/corpus/TARGET/ are only read; what the fuzzer finds on top of them is
# kept in build-fuzz/corpus/TARGET/, crashes in build-fuzz/crashes/TARGET/. Each run
# appends "TARGET SECONDS" (the seconds it actually ran) to build-fuzz/fuzz-times.log.
set -euo pipefail
# One fuzzing process, in the foreground: no -jobs/-workers, the machine is shared.

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="${VARNO_FUZZ_BUILD:-$ROOT/build-fuzz}"
TARGETS=(fuzz_lyt fuzz_pack fuzz_cfg fuzz_lng fuzz_picture)

usage() {
  echo "usage: tools/fuzz.sh --list | TARGET SECONDS [libFuzzer arguments]" >&2
  exit 2
}

[ $# -ge 1 ] || usage
if [ "$1" = "--list" ]; then
  printf '%s\n' "${TARGETS[@]}"
  exit 0
fi
[ $# -ge 2 ] || usage
target="$1"
seconds="$2"
shift 2
[[ " ${TARGETS[*]} " == *" $target "* ]] || { echo "unknown target: $target (see --list)" >&2; exit 2; }
[[ "$seconds" =~ ^[0-9]+$ ]] || usage

# clang-14 where the plain name is missing or another version.
cc="${CC:-}"
cxx="${CXX:-}"
if [ -z "$cxx" ]; then
  for v in clang++-14 clang++; do command -v "$v" >/dev/null && { cxx="$v"; break; }; done
  cc="${cxx/clang++/clang}"
fi
[ -n "$cxx" ] || { echo "clang is needed for fuzzing (apt-get install clang-14 libclang-rt-14-dev)" >&2; exit 1; }

if [ ! -f "$BUILD/build.ninja" ]; then
  cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DVARNO_FUZZ=ON \
        -DVARNO_BUILD_TESTS=OFF -DVARNO_BUILD_BENCH=OFF -DVARNO_BUILD_TOOLS=OFF >/dev/null
fi
ninja -C "$BUILD" -j "${VARNO_JOBS:-2}" "$target" fuzz_seeds >/dev/null

seeds="$ROOT/fuzz/corpus/$target"
if [ ! -d "$seeds" ]; then
  "$BUILD/fuzz/fuzz_seeds" "$ROOT/fuzz/corpus"
fi
work="$BUILD/corpus/$target"
crashes="$BUILD/crashes/$target"
mkdir -p "$work" "$crashes"

case "$target" in
  fuzz_picture) max_len=16384 ;;
  *) max_len=8192 ;;
esac

# Leaks are checked; Qt's own one-time allocations are listed in scripts/lsan.supp.
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
export LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0:${LSAN_OPTIONS:-}"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:${UBSAN_OPTIONS:-}"
export QT_QPA_PLATFORM=offscreen
# libFuzzer ends the process without cleaning up, so the targets' scratch folder lives
# here and is cleared on the next run.
export TMPDIR="$BUILD/tmp"
rm -rf "$TMPDIR"
mkdir -p "$TMPDIR"

# A file among the extra arguments is replayed on its own, without the corpora.
corpora=("$work" "$seeds")
for a in "$@"; do
  [ -f "$a" ] && corpora=()
done

start=$(date +%s)
status=0
"$BUILD/fuzz/$target" -max_total_time="$seconds" -max_len="$max_len" -timeout=60 -rss_limit_mb=4096 \
  -print_final_stats=1 -artifact_prefix="$crashes/" "$@" "${corpora[@]}" || status=$?
end=$(date +%s)
echo "$target $((end - start))" >> "$BUILD/fuzz-times.log"
echo "$target ran $((end - start)) s, exit status $status"
exit $status
