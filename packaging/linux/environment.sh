# shellcheck shell=bash disable=SC2034 # used by the sourcing scripts
# Sourced by the scripts beside it that check a finished package.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source-path=SCRIPTDIR source=../../scripts/setup.sh
. "$repository/scripts/setup.sh"

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# choose_package [DEB]: sets $deb to DEB, relative to the caller's folder, or to the package last built.
choose_package() {
    local made=("$repository"/build/packages/monitor-autoclava_*.deb)
    deb=$(readlink -m "${1:-${made[0]}}")
    [ -f "$deb" ] || fail "no package $deb: build it with ./package linux"
}
