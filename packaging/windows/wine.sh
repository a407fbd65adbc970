# shellcheck shell=bash disable=SC2034,SC2154 # used by the sourcing scripts, set by environment.sh
# Sourced by the tests beside it, after environment.sh. Each test has its own Wine prefix in build/wine.

# shellcheck source-path=SCRIPTDIR source=../../scripts/processes.sh
. "$repository/scripts/processes.sh"
install_packages fonts-dejavu-core fonts-wine wine wine64

work=$repository/build/wine/${0##*/}
# The prefix's drive C:.
drive_c=$work/prefix/drive_c
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='

end_wineserver() { wineserver -k 2>/dev/null || true; } # of this prefix only
trap 'end_started; end_wineserver; remove_server_folder' EXIT

# logged LOG COMMAND...: keeps the output in a log and shows it on failure. Wine's services inherit the
# output and never end, so it must be a file, not a pipe.
logged() {
    local log=$work/$1.log
    shift
    "$@" >>"$log" 2>&1 && return
    tail -n 20 "$log" >&2
    fail "this failed: $*"
}

# Debian's Wine keeps its server's folder outside the prefix and records its name there.
remove_server_folder() {
    local note=$work/prefix/wineserver
    [ ! -s "$note" ] || rm -rf "${TMPDIR:-/tmp}/$(cat "$note")" "$note"
}

# Starts from an empty prefix, whatever an interrupted run left.
make_wine_prefix() {
    mkdir -p "$work/prefix"
    end_wineserver
    remove_server_folder
    rm -rf "$work/prefix" "$work"/*.log
    mkdir "$work/prefix"
    logged wineboot wine wineboot --init
    # wineboot returns while its services still fill the prefix: programs are missing in it until then. The
    # server ends with the last of them.
    logged wineserver timeout 120 wineserver -w
    logged wineserver wineserver -p
    logged wineboot wine winecfg -v win10
    # Wine lacks the fonts of Windows' own windows.
    local font
    for font in "MS Shell Dlg" "MS Shell Dlg 2" Tahoma "Segoe UI"; do
        logged registry wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d "DejaVu Sans" /f
        logged registry wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' \
            /v "$font" /d "DejaVu Sans" /f
    done
    # Qt's offscreen platform takes its fonts from this folder; Wine does not pass the variable on.
    logged registry wine reg add 'HKCU\Environment' /v QT_QPA_FONTDIR /d 'Z:\usr\share\fonts\truetype\dejavu' /f
}

# map_ports LINK...: makes COM1, COM2 and so on of the pseudo-terminals behind these links.
map_ports() {
    local link number=0
    for link in "$@"; do
        logged registry wine reg add 'HKLM\Software\Wine\Ports' /v "COM$((++number))" /d "$link" /f
    done
    end_wineserver # it reads its ports once, at start
    logged wineserver wineserver -p
}
