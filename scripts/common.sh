# Shared by run.sh and test.sh: install what is missing, then configure and build.
# Sourced, not run.

VARNO_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
VARNO_BUILD="${VARNO_BUILD:-$VARNO_ROOT/build}"

VARNO_PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-image-formats-plugins libgl-dev
  libgif-dev libpng-dev libjpeg62-turbo-dev fonts-dejavu-core
)

varno_missing_packages() {
  local missing=() p
  for p in "$@"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
      missing+=("$p")
    fi
  done
  echo "${missing[@]}"
}

# Installs the packages that are not there yet: by itself when running as root,
# otherwise it prints the exact command and stops.
varno_install() {
  local missing
  missing=$(varno_missing_packages "$@")
  [ -z "$missing" ] && return 0
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "Varno builds on Debian or Ubuntu with apt. Missing packages: $missing" >&2
    exit 1
  fi
  if [ "$(id -u)" = 0 ]; then
    echo "Installing: $missing"
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
  else
    echo "Some packages Varno needs are missing. Install them with:" >&2
    echo "  sudo apt-get update && sudo apt-get install -y --no-install-recommends $missing" >&2
    echo "then run this command again." >&2
    exit 1
  fi
}

varno_build() {
  local jobs
  jobs=$(nproc 2>/dev/null || echo 2)
  cmake -S "$VARNO_ROOT" -B "$VARNO_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  cmake --build "$VARNO_BUILD" -j "$jobs"
}
