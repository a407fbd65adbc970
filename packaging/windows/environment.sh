# shellcheck shell=bash disable=SC2034 # used by the sourcing scripts
# Sourced by the scripts beside it: architectures, folders, packages and common functions.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source-path=SCRIPTDIR source=../../scripts/setup.sh
. "$repository/scripts/setup.sh"

# Qt for Windows is built once and outlives the clone.
cache=$(realpath -m "${STATION_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/monitor_autoclava}")
jobs=${STATION_JOBS:-$(nproc)}
architectures=(x86_64 i686)

windows_packages=("${build_packages[@]}" dpkg-dev git googletest nsis qt6-base-dev-tools zip
    g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix)

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# The host's Qt tools generate code for the Windows Qt, so both must have the same version.
# shellcheck disable=SC2016 # a field of dpkg
qt_version() { dpkg-query -W -f '${source:Version}' qt6-base-dev; }
# shellcheck disable=SC2016
qcustomplot_version() { dpkg-query -W -f '${source:Version}' libqcustomplot-dev; }

# The folder name contains a hash of recipe (without comments), compiler and versions: a change of any of
# them builds into a new folder.
qt_prefix() {
    local recipe
    recipe=$({
        (cd "$repository/packaging/windows" && grep -hv '^ *#' build_qt toolchain.cmake.in qcustomplot/CMakeLists.txt)
        # shellcheck disable=SC2016
        dpkg-query -W -f '${Package} ${Version}\n' "g++-mingw-w64-${1/_/-}-posix" "mingw-w64-${1/_/-}-dev" googletest
        qcustomplot_version
    } | sha256sum)
    printf '%s/qt-%s-%s-%.12s' "$cache" "$(qt_version)" "$1" "$recipe"
}

station_version() { sed -n 's/^project(monitor_autoclava VERSION \([0-9.]*\).*/\1/p' "$repository/CMakeLists.txt"; }

[[ $cache != *[[:blank:]]* ]] ||
    fail "Qt cannot be built in a folder with a space in its name: set STATION_WINDOWS_CACHE to one without"

check_architecture() {
    case " ${architectures[*]} " in *" $1 "*) ;; *) fail "unknown architecture $1; use one of: ${architectures[*]}" ;; esac
}

# build_host_tools NAME...: builds tools of the repository that run on this system, in $host_tools.
host_tools=$repository/build/host-tools/tools
build_host_tools() {
    say "Building for this system: $*"
    cmake --fresh --preset release -S "$repository" -B "$repository/build/host-tools"
    cmake --build "$repository/build/host-tools" --parallel "$jobs" --target "$@"
}

# configure_station ARCHITECTURE FOLDER OPTION...: configures the station for Windows in the folder. --fresh
# forgets where the libraries were: another Qt may have been built since.
configure_station() {
    local architecture=$1 build=$2
    shift 2
    cmake --fresh --preset release -S "$repository" -B "$build" -D STATION_HOST_TOOLS="$host_tools" \
        -D CMAKE_TOOLCHAIN_FILE="$(qt_prefix "$architecture")/lib/cmake/Qt6/qt.toolchain.cmake" "$@"
}
