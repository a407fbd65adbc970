# shellcheck shell=bash disable=SC2154 # `work` and `fail` are the caller's
# Sourced by scripts that start programs and wait for their effects. They define the folder `work` and the
# function `fail`, and call end_started on exit.

patience=120 # seconds

started=() # process ids
end_started() {
    local pid
    for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done
    started=()
}

# wait_until WHAT COMMAND...: retries the command until it succeeds; fails after $patience seconds.
wait_until() {
    local what=$1 end=$((SECONDS + patience))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || fail "$what: not within $patience s"
        sleep 0.005
    done
}

# start_screen WIDTHxHEIGHT: starts a virtual screen and points DISPLAY to it.
start_screen() {
    local display
    rm -f "$work/display" # of an earlier screen
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
    started+=($!)
    wait_until "the virtual screen" test -s "$work/display"
    display=:$(cat "$work/display")
    export DISPLAY=$display
}
