# shellcheck shell=bash disable=SC2154 # `work` and `fail` are theirs
# Sourced by tests that need a Debian root of their own, after setup.sh; they have a folder `work` and a
# function `fail`.

root=$work/root

# in_root COMMAND...: what is mounted for it and what it started ends with it. The simulated recorder
# needs pseudo-terminals.
in_root() {
    # shellcheck disable=SC2016 # for the inner shell
    as_root unshare --mount --pid --fork --kill-child sh -euc 'root=$1; shift
        mount --rbind /dev "$root/dev"
        mount -t proc proc "$root/proc"
        exec chroot "$root" env DEBIAN_FRONTEND=noninteractive HOME=/root LC_ALL=C.UTF-8 "$@"' sh "$root" "$@"
}

# list_archives FILTER...: those that this system installs from: the default one need not be within
# reach. The filters are those of apt-get indextargets.
list_archives() {
    # shellcheck disable=SC2016 # fields of apt
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' "$@" | sort -u >"$work/sources.list"
    [ -s "$work/sources.list" ] || fail "apt knows no Debian archive: run apt-get update"
}

# make_root OPTION...: what mmdebstrap is told besides. From the archives that were listed.
make_root() {
    as_root mmdebstrap --quiet --variant=apt "$@" "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" "$work/sources.list"
    in_root apt-get update -q
}
