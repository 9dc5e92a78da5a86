#!/usr/bin/env bash
# Installs what is missing, builds Varno and starts the editor.
# Any arguments are passed to the editor (a layout file to open).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

varno_install "${VARNO_PACKAGES[@]}"
varno_build -DVARNO_BUILD_TESTS=OFF -DVARNO_BUILD_BENCH=OFF -DVARNO_BUILD_TOOLS=OFF

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
  echo "Varno is built, but there is no display to show it on (DISPLAY and WAYLAND_DISPLAY are unset)." >&2
  echo "Start it on a virtual screen instead:" >&2
  echo "  xvfb-run -a $VARNO_BUILD/bin/Varno" >&2
  echo "(xvfb-run comes with: apt-get install xvfb xauth)" >&2
  exit 1
fi
exec "$VARNO_BUILD/bin/Varno" "$@"
