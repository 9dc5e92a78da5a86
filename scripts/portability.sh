#!/usr/bin/env bash
# Runs the whole test suite (built by scripts/test.sh) as other machines would see it:
#   1. QtGui's drawing and pixel conversions cut down to what an older processor has
#      (SSE2 to SSE4.2 without AVX, then SSE2 alone);
#   2. a German locale and a time zone 14 hours ahead of UTC;
#   3. only the fonts fonts-dejavu-core installs, then only a serif font.
# Ends with one line per run; any failing run makes the script fail.
#
#   bash scripts/portability.sh [ctest arguments, for example -R tst_artwork]
#
# QT_NO_CPU_FEATURE does not work in Qt 6.4: it splits the list at spaces but compares
# each name with a copy that starts with a space, so no feature is ever turned off.
# QtGui reads the features through the exported qt_cpu_features, so a preloaded
# definition of that symbol decides which code paths QtGui takes (QtCore keeps its own).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc 2>/dev/null || echo 2)
failed=0

run() { # name, then environment assignments
  local name=$1 log="$work/${1//[^A-Za-z0-9.-]/_}.log"
  shift
  if (cd "$VARNO_BUILD" && env "$@" ctest -j "$jobs" --output-on-failure "${ctest_args[@]}" >"$log" 2>&1); then
    echo "$name: $(grep 'tests passed' "$log")"
  else
    failed=1
    echo "$name: FAILED"
    grep -E 'FAIL!|Failed|\*\*\*' "$log" | head -20 || true
  fi
}
ctest_args=("$@")

# Bit 63 marks the set as detected; the low bits follow qsimd's list: 0 sse2, 1 sse3,
# 2 ssse3, 3 fma, 4 sse4.1, 5 sse4.2, 6 movbe, 7 popcnt, 8 aes, 9 avx, 10 f16c, 13 avx2.
printf 'Qt_6 { global: qt_cpu_features; };\n' >"$work/qt6.map"
for cpu in "no-avx 0xf7" "sse2-only 0x1"; do
  set -- $cpu
  printf 'unsigned long long qt_cpu_features[1] = { (1ull << 63) | %s };\n' "$2" >"$work/$1.c"
  cc -shared -fPIC -Wl,--version-script="$work/qt6.map" "$work/$1.c" -o "$work/$1.so"
  run "processor $1" LD_PRELOAD="$work/$1.so"
done

# Qt reads the locale from the environment; the C library needs the locale compiled.
locale=de_DE.UTF-8
mkdir -p "$work/locales"
localedef -i de_DE -f UTF-8 "$work/locales/$locale" 2>/dev/null || echo "(C library locale $locale not built; Qt still uses it)"
run "locale $locale, TZ Pacific/Kiritimati" LOCPATH="$work/locales" LANG=$locale LC_ALL=$locale TZ=Pacific/Kiritimati

# fontconfig sees only the given font files; its other settings (hinting) stay the system's.
fonts() { # name, font files
  local name=$1
  shift
  mkdir -p "$work/fonts-$name"
  ln -s "$@" "$work/fonts-$name/"
  printf '<?xml version="1.0"?>\n<fontconfig><dir>%s</dir><cachedir>%s</cachedir><include ignore_missing="yes">/etc/fonts/conf.d</include></fontconfig>\n' \
    "$work/fonts-$name" "$work/fontcache" >"$work/fonts-$name.conf"
  run "fonts: $name" FONTCONFIG_FILE="$work/fonts-$name.conf"
}
fonts fonts-dejavu-core $(dpkg -L fonts-dejavu-core | grep '\.ttf$')
fonts serif-only /usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf

exit $failed
