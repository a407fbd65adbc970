# shellcheck shell=bash disable=SC2034,SC2154 # names for those who source this, and from environment.sh
# Sourced by the tests beside it, after environment.sh: a Wine of its own in build/wine for each.

# shellcheck source-path=SCRIPTDIR source=../../scripts/processes.sh
. "$repository/scripts/processes.sh"
install_packages fonts-dejavu-core fonts-wine wine wine64

work=$repository/build/wine/${0##*/}
# What Wine gives C:\ of this prefix.
drive_c=$work/prefix/drive_c
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='

end_wineserver() { wineserver -k 2>/dev/null || true; } # of this prefix only
trap 'end_started; end_wineserver; remove_server_folder' EXIT

# logged LOG COMMAND...: what it prints is kept in the log, and shown when it fails. Wine's services
# inherit what it writes to and never end: files, no pipes.
logged() {
    local log=$work/$1.log
    shift
    "$@" >>"$log" 2>&1 && return
    tail -n 20 "$log" >&2
    fail "this failed: $*"
}

# Debian's Wine keeps its server's folder outside of the prefix, and notes its name there.
remove_server_folder() {
    local note=$work/prefix/wineserver
    [ ! -s "$note" ] || rm -rf "${TMPDIR:-/tmp}/$(cat "$note")" "$note"
}

# A new one: what an interrupted run left in the last one is not looked at.
make_wine_prefix() {
    mkdir -p "$work/prefix"
    end_wineserver
    remove_server_folder
    rm -rf "$work/prefix" "$work"/*.log
    mkdir "$work/prefix"
    logged wineserver wineserver -p
    logged wineboot wine wineboot --init
    logged wineboot wine winecfg -v win10
    # What Windows writes its windows in, Wine does not have.
    local font
    for font in "MS Shell Dlg" "MS Shell Dlg 2" Tahoma "Segoe UI"; do
        logged registry wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d "DejaVu Sans" /f
        logged registry wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' \
            /v "$font" /d "DejaVu Sans" /f
    done
    # Qt's offscreen platform takes its fonts from a folder alone, and Wine keeps this name of our
    # environment to itself.
    logged registry wine reg add 'HKCU\Environment' /v QT_QPA_FONTDIR /d 'Z:\usr\share\fonts\truetype\dejavu' /f
}

# map_ports LINK...: COM1, COM2 and so on are the pseudo-terminals that these links lead to.
map_ports() {
    local link number=0
    for link in "$@"; do
        logged registry wine reg add 'HKLM\Software\Wine\Ports' /v "COM$((++number))" /d "$link" /f
    done
    end_wineserver # it looks at its ports once
    logged wineserver wineserver -p
}
