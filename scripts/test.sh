#!/usr/bin/env bash
# Installs what is missing, builds Varno with its tests, tools and benchmarks, and runs
# every test. Ends with ctest's summary line.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

varno_install "${VARNO_PACKAGES[@]}"
varno_build -DVARNO_BUILD_TESTS=ON -DVARNO_BUILD_BENCH=ON -DVARNO_BUILD_TOOLS=ON

export QT_QPA_PLATFORM=offscreen
cd "$VARNO_BUILD"
ctest --output-on-failure -j "$(nproc 2>/dev/null || echo 2)"
