# shellcheck shell=bash disable=SC2034 # used by the sourcing scripts
# Sourced by the scripts beside it that check a finished package.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source-path=SCRIPTDIR source=../../scripts/setup.sh
. "$repository/scripts/setup.sh"

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# choose_packages [DEB]: sets $deb to the station's package DEB, relative to the caller's folder, or to the
# one last built; $jettool_deb and $collect_deb to those beside it; $version.
choose_packages() {
    local made=("$repository"/build/packages/monitor-autoclava_*.deb) folder file
    deb=$(readlink -m "${1:-${made[0]}}")
    [ -f "$deb" ] || fail "no package $deb: build it with ./package linux"
    version=$(dpkg-deb -f "$deb" Version) folder=$(dirname "$deb")
    jettool_deb=$folder/jettool_${version}_$(dpkg-deb -f "$deb" Architecture).deb
    collect_deb=$folder/monitor-autoclava-collect_${version}_all.deb
    for file in "$jettool_deb" "$collect_deb"; do [ -f "$file" ] || fail "no package $file"; done
}
