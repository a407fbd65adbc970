# shellcheck shell=bash disable=SC2034,SC2154 # names for those who source this, and from environment.sh
# Sourced by the tests beside it, after environment.sh: a Wine of its own in build/wine for each, and
# how they wait.

install_packages fonts-dejavu-core fonts-wine wine wine64

patience=120 # seconds
work=$repository/build/wine/${0##*/}
# What Wine gives C:\ of this prefix.
drive_c=$work/prefix/drive_c
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='

started=()
end_started() {
    local pid
    for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done
    wineserver -k 2>/dev/null || true # of this prefix only
}
trap end_started EXIT

# wait_until WHAT COMMAND...: fails loudly when the command does not succeed in time.
wait_until() {
    local what=$1 end=$((SECONDS + patience))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || fail "$what: not within $patience s"
        sleep 0.01
    done
}

# Wine's services inherit what it writes to and never end: files, no pipes.
start_wineserver() { wineserver -p >>"$work/wineserver.log" 2>&1; }

make_wine_prefix() {
    mkdir -p "$work/prefix"
    start_wineserver
    wine wineboot --init >"$work/wineboot.log" 2>&1
    wine winecfg -v win10 >>"$work/wineboot.log" 2>&1
    # What Windows writes its windows in, Wine does not have.
    local font
    for font in "MS Shell Dlg" "MS Shell Dlg 2" Tahoma "Segoe UI"; do
        wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d "DejaVu Sans" /f >>"$work/wineboot.log" 2>&1
        wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' \
            /v "$font" /d "DejaVu Sans" /f >>"$work/wineboot.log" 2>&1
    done
    # Qt's offscreen platform takes its fonts from a folder alone, and Wine keeps this name of our
    # environment to itself.
    wine reg add 'HKCU\Environment' /v QT_QPA_FONTDIR /d 'Z:\usr\share\fonts\truetype\dejavu' /f >>"$work/wineboot.log" 2>&1
}

# map_ports LINK...: COM1, COM2 and so on are the pseudo-terminals that these links lead to.
map_ports() {
    local link number=0
    for link in "$@"; do
        wine reg add 'HKLM\Software\Wine\Ports' /v "COM$((++number))" /d "$link" /f >"$work/reg.log" 2>&1
    done
    wineserver -k
    start_wineserver
}

start_screen() {
    local display
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
    started+=($!)
    wait_until "the screen" test -s "$work/display"
    display=:$(cat "$work/display")
    export DISPLAY=$display
}
