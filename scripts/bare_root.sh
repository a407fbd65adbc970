# shellcheck shell=bash disable=SC2154 # `work` and `fail` are the caller's
# Sourced after setup.sh by tests that need a Debian root of their own. They define the folder `work` and
# the function `fail`.

root=$work/root

# in_root COMMAND...: runs it in the root; its mounts and child processes end with it. /dev is there for
# the pseudo-terminals of the simulated recorder.
in_root() {
    # shellcheck disable=SC2016 # for the inner shell
    as_root unshare --mount --pid --fork --kill-child sh -euc 'root=$1; shift
        mount --rbind /dev "$root/dev"
        mount -t proc proc "$root/proc"
        exec chroot "$root" env DEBIAN_FRONTEND=noninteractive HOME=/root LC_ALL=C.UTF-8 "$@"' sh "$root" "$@"
}

# list_archives FILTER...: writes sources.list from this system's own archives, because the default archive
# may be out of reach. FILTER is one of apt-get indextargets.
list_archives() {
    # shellcheck disable=SC2016 # apt's own variables
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' "$@" | sort -u >"$work/sources.list"
    [ -s "$work/sources.list" ] || fail "apt has no Debian archive: run apt-get update"
}

# make_root OPTION...: makes the root from the listed archives; OPTION goes to mmdebstrap.
make_root() {
    as_root mmdebstrap --quiet --variant=apt "$@" "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" "$work/sources.list"
    in_root apt-get update -q
}
