# shellcheck shell=bash disable=SC2034 # names for those who source this
# Sourced by the scripts beside it that look at a finished package.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source-path=SCRIPTDIR source=../../scripts/setup.sh
. "$repository/scripts/setup.sh"

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# choose_package [DEB]: the one named, seen from the caller's folder, or the one that was made; in $deb.
choose_package() {
    local made=("$repository"/build/packages/monitor-autoclava_*.deb)
    deb=$(readlink -m "${1:-${made[0]}}")
    [ -f "$deb" ] || fail "there is no package $deb: ./package linux makes it"
}
