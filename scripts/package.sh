#!/usr/bin/env bash
# Installs what is missing, builds Varno for /usr and makes the Debian package
# build/varno_<version>_amd64.deb. Install it with:  sudo apt install ./build/varno_*.deb
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# dpkg-shlibdeps (dpkg-dev) works out the package's dependencies; file finds the programs
# among the installed files for it.
varno_install "${VARNO_PACKAGES[@]}" dpkg-dev file
# The install prefix is compiled in: an installed Varno recognises itself by it.
varno_build -DVARNO_BUILD_TESTS=OFF -DVARNO_BUILD_BENCH=OFF -DVARNO_BUILD_TOOLS=OFF -DCMAKE_INSTALL_PREFIX=/usr

cd "$VARNO_BUILD"
cpack -G DEB
version=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' CPackConfig.cmake)
deb="$VARNO_BUILD/varno_${version}_$(dpkg --print-architecture).deb"
echo
dpkg-deb --field "$deb" Package Version Architecture Depends Recommends
echo "Package: $deb"
