# shellcheck shell=bash disable=SC2154 # `work` and `fail` are theirs
# Sourced by scripts that start programs and wait for what these do. They have a folder `work` and a
# function `fail`, and call end_started when they end.

patience=120 # seconds

started=() # process numbers
end_started() {
    local pid
    for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done
    started=()
}

# wait_until WHAT COMMAND...: fails loudly when the command does not succeed in time.
wait_until() {
    local what=$1 end=$((SECONDS + patience))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || fail "$what: not within $patience s"
        sleep 0.005
    done
}

# start_screen WIDTHxHEIGHT: a virtual one, for what is started from now on.
start_screen() {
    local display
    rm -f "$work/display" # an earlier screen's
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
    started+=($!)
    wait_until "the virtual screen" test -s "$work/display"
    display=:$(cat "$work/display")
    export DISPLAY=$display
}
