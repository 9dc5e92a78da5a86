#!/usr/bin/env bash
# Builds the Windows release on Debian, tests it under Wine and packages it:
#   bash scripts/windows.sh          everything: Qt for Windows (once), Varno, tests, installer, zip
#   bash scripts/windows.sh deps     only Qt for Windows and the image libraries (the cache)
#   bash scripts/windows.sh if-cached  everything, but only when the cache is already built
#                                    (for CI, where building Qt would take too long)
#
# Qt and giflib/libpng/zlib/libjpeg-turbo for Windows are built from Debian's own source packages
# of the host's versions (so the host's moc, rcc and uic match), once, into
#   ${VARNO_WINDOWS_CACHE:-~/.cache/varno-windows/<Qt version>-r<recipe>}
# and reused on later runs. Nothing is downloaded except through apt.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Raise when the way the cache is built changes, so an old cache is not reused.
VARNO_WIN_RECIPE=1
VARNO_WIN_TRIPLE=x86_64-w64-mingw32
VARNO_WIN_BUILD="${VARNO_WIN_BUILD:-$VARNO_ROOT/build-windows}"
VARNO_WIN_TOOLCHAIN="$VARNO_ROOT/cmake/mingw-w64-x86_64.cmake"
VARNO_WIN_JOBS=$(nproc 2>/dev/null || echo 2)

VARNO_WIN_PACKAGES=(
  "${VARNO_PACKAGES[@]}" dpkg-dev
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-tools
  wine64 xvfb xauth x11-utils nsis zip
)

say() { echo "== windows.sh: $*"; }

qt_source_version() { dpkg-query -W -f='${source:Version}' libqt6core6; }

# apt-get source needs deb-src entries for the suites the binary packages come from.
ensure_deb_src() {
  if apt-get source --print-uris qt6-base="$(qt_source_version)" >/dev/null 2>&1; then
    return 0
  fi
  if [ "$(id -u)" != 0 ]; then
    echo "apt has no deb-src entries. Add 'deb-src' lines for your suites (or run this as root), then run again." >&2
    exit 1
  fi
  say "adding deb-src entries for apt"
  local f out=/etc/apt/sources.list.d/varno-deb-src
  : >"$out.sources"
  for f in /etc/apt/sources.list.d/*.sources; do
    [ "$f" = "$out.sources" ] && continue
    # Same mirrors and suites, source packages instead of binaries.
    sed -n '/^Types:.*\bdeb\b/,/^$/p' "$f" | sed 's/^Types:.*/Types: deb-src/' >>"$out.sources"
    echo >>"$out.sources"
  done
  if [ -f /etc/apt/sources.list ]; then
    grep -E '^deb ' /etc/apt/sources.list | sed 's/^deb /deb-src /' >"$out.list" || true
  fi
  apt-get update -qq
}

fetch_source() { # package[=version] dest
  local pkg=$1 dest=$2
  [ -f "$dest/.fetched" ] && return 0
  rm -rf "$dest" && mkdir -p "$dest"
  say "fetching Debian source of $pkg"
  local v candidates
  if [[ $pkg == *=* ]]; then
    candidates=$pkg
  else
    # Newest first; a mirror may not carry every version its index lists.
    candidates=$(apt-cache showsrc "$pkg" | awk '/^Version:/ {print $2}' | sort -rV | sed "s/^/$pkg=/")
  fi
  for v in $candidates; do
    if (cd "$dest" && apt-get source -qq "$v" >/dev/null 2>"$dest/.log"); then
      touch "$dest/.fetched"
      return 0
    fi
    rm -rf "${dest:?}"/*
  done
  cat "$dest/.log" >&2
  echo "Could not fetch the Debian source of $pkg" >&2
  exit 1
}

src_dir() { find "$1" -mindepth 1 -maxdepth 1 -type d | head -n1; }

build_zlib() { # static library only: Debian's source lacks the win32/ resource file the DLL needs
  local s; s=$(src_dir "$SRC/zlib")
  local o="$CACHE/obj/zlib"; rm -rf "$o" && mkdir -p "$o"
  local c
  for c in adler32 compress crc32 deflate gzclose gzlib gzread gzwrite infback inffast inflate \
           inftrees trees uncompr zutil; do
    "$CC" -O2 -c "$s/$c.c" -o "$o/$c.o"
  done
  "$AR" rcs "$PREFIX/lib/libz.a" "$o"/*.o
  cp "$s/zlib.h" "$s/zconf.h" "$PREFIX/include/"
}

build_giflib() {
  local s; s=$(src_dir "$SRC/giflib")
  local o="$CACHE/obj/giflib"; rm -rf "$o" && mkdir -p "$o"
  local c
  for c in dgif_lib egif_lib gifalloc gif_err gif_font gif_hash openbsd-reallocarray; do
    "$CC" -O2 -c "$s/$c.c" -o "$o/$c.o"
  done
  "$AR" rcs "$PREFIX/lib/libgif.a" "$o"/*.o
  cp "$s/gif_lib.h" "$PREFIX/include/"
}

cmake_lib() { # name source-dir cmake-args...
  local name=$1 s=$2; shift 2
  local b="$CACHE/obj/$name"; rm -rf "$b"
  cmake -S "$s" -B "$b" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$VARNO_WIN_TOOLCHAIN" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$PREFIX" -DCMAKE_PREFIX_PATH="$PREFIX" "$@" >/dev/null
  cmake --build "$b" -j "$VARNO_WIN_JOBS" >/dev/null
  cmake --install "$b" >/dev/null
}

build_qt() {
  local s; s=$(src_dir "$SRC/qt6-base")
  local b="$CACHE/obj/qtbase"
  # The platform plugin of this Qt needs OpenGL; tablet support needs the Wintab header,
  # which Debian's source leaves out. Third-party code Qt needs is its bundled copy.
  cmake -S "$s" -B "$b" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$VARNO_WIN_TOOLCHAIN" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$PREFIX" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
    -DBUILD_SHARED_LIBS=ON -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
    -DFEATURE_sql=OFF -DFEATURE_network=OFF -DFEATURE_dbus=OFF -DFEATURE_printsupport=OFF \
    -DFEATURE_concurrent=OFF -DFEATURE_xml=OFF -DFEATURE_vulkan=OFF -DFEATURE_tabletevent=OFF \
    -DFEATURE_opengl=ON \
    -DFEATURE_system_zlib=OFF -DFEATURE_system_png=OFF -DFEATURE_system_jpeg=OFF \
    -DFEATURE_system_freetype=OFF -DFEATURE_system_harfbuzz=OFF -DFEATURE_system_pcre2=OFF \
    -DFEATURE_system_doubleconversion=OFF
  cmake --build "$b" -j "$VARNO_WIN_JOBS"
  cmake --install "$b" >/dev/null
}

build_cache() {
  if [ -f "$CACHE/.complete" ]; then
    say "reusing Qt for Windows and the image libraries in $CACHE"
    return 0
  fi
  ensure_deb_src
  # Qt must be the host's exact version; the image libraries are linked statically, so the
  # suite's current source of each will do.
  fetch_source "qt6-base=$(qt_source_version)" "$SRC/qt6-base"
  local pkg
  for pkg in giflib libpng1.6 zlib libjpeg-turbo; do
    fetch_source "$pkg" "$SRC/$pkg"
  done
  mkdir -p "$PREFIX/lib" "$PREFIX/include"
  if [ ! -f "$CACHE/.libs" ]; then
    say "building zlib, giflib, libpng and libjpeg-turbo for Windows"
    build_zlib
    build_giflib
    cmake_lib libpng "$(src_dir "$SRC/libpng1.6")" -DPNG_SHARED=OFF -DPNG_STATIC=ON \
      -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF -DZLIB_ROOT="$PREFIX" \
      -DZLIB_INCLUDE_DIR="$PREFIX/include" -DZLIB_LIBRARY="$PREFIX/lib/libz.a"
    cmake_lib libjpeg "$(src_dir "$SRC/libjpeg-turbo")" -DENABLE_SHARED=OFF -DENABLE_STATIC=ON \
      -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF
    touch "$CACHE/.libs"
  fi
  say "building Qt for Windows (about 1,100 steps; 20-25 minutes on two cores)"
  build_qt
  touch "$CACHE/.complete"
}

cache_folder() {
  echo "${VARNO_WINDOWS_CACHE:-$HOME/.cache/varno-windows/$(qt_source_version)-r$VARNO_WIN_RECIPE}"
}

if [ "${1:-}" = if-cached ]; then
  if ! qt_source_version >/dev/null 2>&1 || [ ! -f "$(cache_folder)/.complete" ]; then
    echo "=================================================================================="
    echo "SKIPPED: the Windows build and its tests under Wine did not run, because Qt for"
    echo "Windows is not built yet (no cache in ${VARNO_WINDOWS_CACHE:-~/.cache/varno-windows/}). Build it once with"
    echo "  bash scripts/windows.sh"
    echo "=================================================================================="
    exit 0
  fi
  shift
fi

varno_install "${VARNO_WIN_PACKAGES[@]}"
# Wine's windows need a screen: the whole run gets a virtual one of its own.
if [ "${1:-}" != deps ] && [ -z "${VARNO_UNDER_XVFB:-}" ]; then
  VARNO_UNDER_XVFB=1 exec xvfb-run -a -s "-screen 0 1280x1024x24" bash "${BASH_SOURCE[0]}" "$@"
fi
CC=$VARNO_WIN_TRIPLE-gcc-posix
AR=$VARNO_WIN_TRIPLE-gcc-ar-posix
CACHE=$(cache_folder)
SRC="$CACHE/src"
PREFIX="$CACHE/prefix"
export VARNO_WINDOWS_PREFIX="$PREFIX"

build_cache
[ "${1:-}" = deps ] && exit 0

# --- Varno for Windows -------------------------------------------------------------------

WINE=$(command -v wine || echo /usr/lib/wine/wine64)
WINESERVER=$(command -v wineserver || echo /usr/lib/wine/wineserver)
# Wine's own registry and files for the tests and the installer check, inside the build.
export WINEPREFIX="$VARNO_WIN_BUILD/wine"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=" # no Mono or Gecko prompts
export VARNO_WINE="$WINE"

build_varno() {
  say "cross-building Varno, varno-cli and the tests into $VARNO_WIN_BUILD"
  cmake -S "$VARNO_ROOT" -B "$VARNO_WIN_BUILD" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$VARNO_WIN_TOOLCHAIN" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$PREFIX" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
    -DVARNO_BUILD_TESTS=ON -DVARNO_BUILD_TOOLS=ON -DVARNO_BUILD_BENCH=OFF \
    -DCMAKE_CROSSCOMPILING_EMULATOR="$VARNO_ROOT/cmake/wine-run.sh" >/dev/null
  cmake --build "$VARNO_WIN_BUILD" -j "$VARNO_WIN_JOBS"
  VERSION=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$VARNO_WIN_BUILD/CMakeCache.txt")
}

prepare_wine() {
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    say "preparing a Wine prefix in $WINEPREFIX"
    "$WINE" wineboot --init >/dev/null 2>&1 || true
    "$WINESERVER" -w
  fi
}

# Every DLL and EXE of the installed folder, and every DLL they import in turn, must be
# either in the folder or part of Windows (Wine's set of system DLLs stands for it).
check_imports() { # folder
  local dir=$1 system=/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
  local -A have=() seen=()
  local f name missing=0
  while IFS= read -r f; do have[$(basename "${f,,}")]=$f; done < <(find "$dir" -iname '*.dll' -o -iname '*.exe')
  local queue=()
  while IFS= read -r f; do queue+=("$f"); done < <(find "$dir" -iname '*.exe' -o -ipath '*/plugins/*' -o -iname '*.dll')
  while [ ${#queue[@]} -gt 0 ]; do
    f=${queue[0]}; queue=("${queue[@]:1}")
    [ -n "${seen[$f]:-}" ] && continue
    seen[$f]=1
    while IFS= read -r name; do
      name=${name,,}
      if [ -n "${have[$name]:-}" ]; then
        queue+=("${have[$name]}")
      elif [ ! -e "$system/$name" ] && [[ $name != api-ms-win-* ]]; then
        echo "MISSING: $(basename "$f") imports $name, which is neither installed nor part of Windows" >&2
        missing=1
      fi
    done < <($VARNO_WIN_TRIPLE-objdump -p "$f" | sed -n 's/^\s*DLL Name: //p')
  done
  [ $missing = 0 ] || exit 1
  say "imports checked: ${#seen[@]} EXE and DLL files, nothing missing"
}

package() {
  local stage lists base
  base="$VARNO_WIN_BUILD/Varno-$VERSION-win64"
  stage="$VARNO_WIN_BUILD/package/Varno"
  lists="$VARNO_WIN_BUILD/package"
  rm -rf "$lists" && mkdir -p "$stage"
  cmake --install "$VARNO_WIN_BUILD" --prefix "$stage" >/dev/null
  check_imports "$stage"

  say "packaging $base.zip and $base.exe"
  rm -f "$base.zip"
  (cd "$lists" && zip -qr "$base.zip" Varno)

  # File lists for the installer: the program's files, the user's sample files, and what
  # the uninstaller removes (never the user's folders).
  local f rel dir last=- lastuser=-
  : >"$lists/files.nsh"; : >"$lists/userfiles.nsh"; : >"$lists/unfiles.nsh"
  while IFS= read -r f; do
    rel=${f#"$stage"/}
    dir=$(dirname "$rel"); [ "$dir" = . ] && dir="" || dir="\\${dir//\//\\}"
    case $rel in
      packs/*|layouts/*)
        [ "$dir" != "$lastuser" ] && echo "SetOutPath \"\$INSTDIR$dir\"" >>"$lists/userfiles.nsh"
        lastuser=$dir
        echo "File \"$f\"" >>"$lists/userfiles.nsh"
        ;;
      *)
        [ "$dir" != "$last" ] && echo "SetOutPath \"\$INSTDIR$dir\"" >>"$lists/files.nsh"
        last=$dir
        echo "File \"$f\"" >>"$lists/files.nsh"
        echo "Delete \"\$INSTDIR\\${rel//\//\\}\"" >>"$lists/unfiles.nsh"
        ;;
    esac
  done < <(find "$stage" -type f | LC_ALL=C sort)
  while IFS= read -r f; do
    rel=${f#"$stage"/}
    echo "RMDir \"\$INSTDIR\\${rel//\//\\}\"" >>"$lists/unfiles.nsh"
  done < <(find "$stage" -mindepth 1 -type d ! -path "$stage/packs*" ! -path "$stage/layouts*" | LC_ALL=C sort -r)
  makensis -V2 -DVERSION="$VERSION" -DLISTS="$lists" -DICON="$VARNO_ROOT/resources/varno.ico" \
    -DOUTFILE="$base.exe" "$VARNO_ROOT/packaging/windows/Varno.nsi"
}

run_tests() {
  say "running the test suite under Wine"
  # Wine's server and desktop start once here, not in a race between the first tests.
  "$WINE" cmd /c ver >/dev/null 2>&1 || true
  cd "$VARNO_WIN_BUILD"
  ctest --output-on-failure --timeout 600 -j "$VARNO_WIN_JOBS"
  cd - >/dev/null
}

# What a user does: install silently, ask varno-cli about a layout, open the layout in the
# editor and close it, uninstall.
check_installer() { # installer.exe
  local installer=$1 localapp dir layout json expected
  localapp=$("$WINE" cmd /c 'echo %LOCALAPPDATA%' | tr -d '\r')
  dir=$("$WINE" winepath -u "$localapp\\Programs\\Varno" | tr -d '\r')
  dir=${dir%/}
  rm -rf "$dir"
  say "installing silently: $(basename "$installer") /S"
  "$WINE" "$installer" /S
  "$WINESERVER" -w
  local f
  for f in Varno.exe varno-cli.exe Qt6Core.dll platforms/qwindows.dll lang/English.lng layouts/AU1_demo.lyt \
           Uninstall.exe; do
    [ -f "$dir/$f" ] || { echo "The installer did not install $f into $dir" >&2; exit 1; }
  done

  layout="$VARNO_WIN_BUILD/check/AU1_demo.lyt"
  mkdir -p "$(dirname "$layout")" && cp "$VARNO_ROOT/layouts/AU1_demo.lyt" "$layout"
  json=$("$WINE" "$dir/varno-cli.exe" info "Z:${layout//\//\\}" --json | tr -d '\r')
  if [ -x "$VARNO_BUILD/bin/varno-cli" ]; then
    expected=$("$VARNO_BUILD/bin/varno-cli" info "$layout" --json)
    [ "$json" = "$expected" ] || { echo "varno-cli.exe info differs from the Linux build's" >&2; exit 1; }
    say "installed varno-cli.exe info prints the same JSON as the Linux build"
  else
    [[ $json == '{"type":"AU1"'* ]] || { echo "varno-cli.exe info failed: $json" >&2; exit 1; }
    say "installed varno-cli.exe info works (no Linux build to compare with)"
  fi

  # The editor opens the layout from its command line; closing it writes Varno.cfg beside it.
  rm -f "$dir/Varno.cfg"
  "$WINE" "$dir/Varno.exe" "Z:${layout//\//\\}" &
  local pid=$! i opened=""
  # Its main window's title names the open layout.
  for i in $(seq 90); do
    sleep 1
    xwininfo -root -tree 2>/dev/null | grep -q '"Varno - AU1_demo' && { opened=1; break; }
  done
  "$WINE" taskkill /IM Varno.exe >/dev/null 2>&1 || true # asks the windows to close
  for i in $(seq 30); do kill -0 $pid 2>/dev/null || break; sleep 1; done
  if kill -0 $pid 2>/dev/null; then
    "$WINE" taskkill /F /IM Varno.exe >/dev/null 2>&1
    echo "Varno.exe did not close when asked" >&2
    exit 1
  fi
  [ -n "$opened" ] || { echo "Varno.exe did not open the layout named on its command line" >&2; exit 1; }
  grep -q "^SaveType " "$dir/Varno.cfg" 2>/dev/null \
    || { echo "Varno.exe did not write Varno.cfg beside itself on exit" >&2; exit 1; }
  say "installed Varno.exe opened the layout and wrote Varno.cfg beside itself on exit"

  "$WINE" "$dir/Uninstall.exe" /S
  for i in $(seq 30); do [ -f "$dir/Varno.exe" ] || break; sleep 1; done
  "$WINESERVER" -w
  for f in Varno.exe varno-cli.exe Qt6Core.dll platforms/qwindows.dll lang/English.lng; do
    [ ! -e "$dir/$f" ] || { echo "The uninstaller left $f" >&2; exit 1; }
  done
  for f in Varno.cfg layouts/AU1_demo.lyt; do
    [ -e "$dir/$f" ] || { echo "The uninstaller removed the user's $f" >&2; exit 1; }
  done
  say "uninstalled silently: the program is gone, Varno.cfg, packs and layouts are kept"
}

build_varno
[ "${1:-}" = build ] && exit 0
prepare_wine
package
check_installer "$VARNO_WIN_BUILD/Varno-$VERSION-win64.exe"
run_tests
