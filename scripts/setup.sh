# shellcheck shell=bash disable=SC2034 # used by the sourcing scripts
# Sourced by the scripts at the root. Installs the packages they need that are missing.

build_packages=(ccache cmake g++ ninja-build qt6-base-dev qt6-serialport-dev libcups2-dev
                libqcustomplot-dev pandoc)
test_packages=(catdoc libgmock-dev libgtest-dev mdbtools poppler-utils)
bench_packages=(libqt6opengl6-dev libsqlite3-dev qt6-charts-dev)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

is_installed() {
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q ' ok installed$'
}

# install_packages NAME...: installs with apt, as root or with sudo.
install_packages() {
    if ! command -v apt-get >/dev/null; then
        printf 'This system has no apt. Install the equivalents of these Debian packages:\n  %s\n' "$*" >&2
        # The other packages cannot be checked here; nothing works without these two.
        command -v cmake >/dev/null && command -v ninja >/dev/null
        return
    fi
    local package missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        printf 'These packages are missing, and installing them needs root:\n  apt-get install %s\n' "${missing[*]}" >&2
        return 1
    fi
    printf 'Installing: %s\n' "${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}
