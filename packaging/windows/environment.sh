# Sourced by the scripts beside it: which architectures there are, where things are kept, what is
# needed to make them.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=../../scripts/setup.sh
. "$repository/scripts/setup.sh"

# Qt for Windows is built once and outlives the clone that built it.
cache=${STATION_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/monitor_autoclava}
jobs=${STATION_JOBS:-$(nproc)}
architectures=(x86_64 i686)

windows_packages=(cmake dpkg-dev g++ googletest ninja-build nsis zip
    g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix qt6-base-dev qt6-base-dev-tools libqcustomplot-dev)

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The host's Qt tools generate code for the Windows Qt: both must be the same version.
qt_version() { dpkg-query -W -f '${source:Version}' qt6-base-dev; }
qt_prefix() { printf '%s/qt-%s-%s' "$cache" "$(qt_version)" "$1"; }

check_architecture() {
    case " ${architectures[*]} " in *" $1 "*) ;; *) fail "architecture $1? It is one of: ${architectures[*]}" ;; esac
}
