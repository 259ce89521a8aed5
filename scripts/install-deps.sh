#!/usr/bin/env bash
# Installs the Debian packages the build, the simulated watch and the tests need.
# Only packages that are missing are installed; sudo is used when not root.
# Extra groups for the checks that need more: `install-deps.sh fuzz` (clang, libFuzzer and the
# symbolizer for `make fuzz`), `install-deps.sh valgrind` (`make check-valgrind`).
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    libefl-all-dev libedje-bin
    libdbus-1-dev libdbus-glib-1-dev dbus-daemon
    libphonenumber-dev
    libsqlite3-dev sqlite3
    nlohmann-json3-dev
    gettext
    libgtest-dev libgmock-dev
    libbenchmark-dev valgrind
    fonts-dejavu-core fonts-dejavu-extra fonts-wqy-microhei fonts-noto-ui-core
    fonts-ipaexfont-gothic fonts-arphic-uming libthai0 libthai-data
    xvfb xauth
    at-spi2-core python3-pyatspi dbus-x11 xdotool
    python3 python3-jsonschema python3-polib
)
for group in "$@"; do
    case "$group" in
        fuzz) packages+=(clang libclang-rt-dev llvm) ;;
        valgrind) packages+=(valgrind) ;;
        *) echo "install-deps.sh: unknown group '$group' (fuzz, valgrind)" >&2; exit 2 ;;
    esac
done

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
