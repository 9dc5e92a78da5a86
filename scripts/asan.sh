#!/usr/bin/env bash
# Builds Varno and every test with clang's address and undefined-behaviour sanitizers
# (with leak checking) in build-asan/, and runs the whole test suite there. A report
# from any sanitizer fails the test that caused it. Ends with ctest's summary line.
#
#   bash scripts/asan.sh [ctest arguments, for example -R tst_layoutsession]
#
# Same as: cmake --preset asan && cmake --build --preset asan && ctest --preset asan
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

varno_install "${VARNO_PACKAGES[@]}" clang libclang-rt-dev
cd "$VARNO_ROOT"
cmake --preset asan >/dev/null
cmake --build --preset asan -j "${VARNO_JOBS:-$(nproc 2>/dev/null || echo 2)}"
ctest --preset asan -j "${VARNO_JOBS:-$(nproc 2>/dev/null || echo 2)}" "$@"
