#!/usr/bin/env bash
# What a writer does in a first session, on the X display of the environment and with real keys: starts the
# program, writes, saves, opens the file again, goes on writing, saves and leaves. What has been saved is then
# looked at by the command beside the program, and the program's log for complaints.
#   session.sh PICTURES PROGRAM STORY-COMMAND [width x height that the window gets]
# PICTURES is a folder, where the screen is kept as it was after each step.
set -euo pipefail

pictures=$(realpath "$1")
program=$(realpath "$2")
story=$(realpath "$3")
size=${4:-}

home=$(mktemp -d)
running=
clean_up() {
    [[ -z $running ]] || kill "$running" 2>/dev/null || true
    rm -rf "$home"
}
trap clean_up EXIT
mkdir -m 700 "$home/runtime"
mkdir "$home/Documents"
log=$pictures/log.txt

fail() {
    picture failed || true
    echo "session: $*" >&2
    tail -n 5 "$log" >&2
    exit 1
}

picture() { import -window root "$pictures/$1.png"; }

# Waits up to half a minute until the command succeeds.
comes() {
    local i
    for ((i = 0; i < 150; ++i)); do
        if "$@" >/dev/null 2>&1; then
            return
        fi
        kill -0 "$running" 2>/dev/null || fail "the program is gone"
        sleep 0.2
    done
    fail "never came: $*"
}

# The screen stands still: what was asked for has been done and shown.
rest() {
    local before= now
    for ((i = 0; i < 100; ++i)); do
        sleep 0.3
        now=$(import -window root rgb:- | md5sum)
        [[ $now != "$before" ]] || return 0
        before=$now
    done
    fail "the screen never comes to rest"
}

key() {
    xdotool key --delay 60 "$@"
    rest
}

# A key that brings up a dialog, or takes one away: a tenth of the screen changes.
turn() {
    import -window root "$home/before.png"
    xdotool key "$1"
    comes looks_different
    rest
}
looks_different() {
    import -window root "$home/now.png"
    convert "$home/before.png" "$home/now.png" -alpha off -compose difference -composite -threshold 0 \
        -colorspace gray -format '%[fx:mean > 0.1]' info: | grep -q 1
}

write() {
    xdotool type --delay 40 "$1"
    rest
}

is_wayland() { [[ ${QT_QPA_PLATFORM:-} == wayland* ]]; }

# With Wayland the window that X knows is the compositor's; the program's has the canvas's colour.
window_is_up() {
    if is_wayland; then
        import -window root png:- | convert - -alpha off -fill black +opaque '#606060' -format '%[fx:mean > 0.05]' info: |
            grep -q 1
    else
        xdotool search --onlyvisible --name '^Fablegrid v'
    fi
}

HOME=$home XDG_DOCUMENTS_DIR=$home/Documents XDG_CONFIG_HOME=$home XDG_RUNTIME_DIR=${SESSION_RUNTIME:-$home/runtime} \
    "$program" 2>"$log" &
running=$!
comes window_is_up
if [[ -n $size ]]; then
    window=$(xdotool search --onlyvisible --name '^Fablegrid v' | tail -n 1)
    xdotool windowmove "$window" 0 0 windowsize "$window" "${size%x*}" "${size#*x}"
fi
rest
picture started

key ctrl+shift+a
key F2
write "The lamp goes out"
key F2
write "Nobody is awake."
key Escape
picture written

turn ctrl+s
write "$home/Documents/lamp.scene"
turn Return
comes test -s "$home/Documents/lamp.scene"
picture saved

key ctrl+n
turn ctrl+o
write "$home/Documents/lamp.scene"
turn Return
key ctrl+f
picture opened

key ctrl+Right
key ctrl+shift+a
key F2
write "Ada rows for oil"
key Escape
key ctrl+s
picture again

expected=0
if is_wayland; then
    # The compositor has no key that closes a window.
    kill "$running"
    expected=$((128 + 15))
else
    xdotool key alt+F4
    comes xdotool search --onlyvisible --name '^Save Changes$'
    rest
    picture question
    xdotool key alt+n
fi
for ((i = 0; i < 100; ++i)); do
    kill -0 "$running" 2>/dev/null || break
    sleep 0.2
done
kill -0 "$running" 2>/dev/null && fail "the program does not end"
status=0
wait "$running" || status=$?
running=
[[ $status -eq $expected ]] || fail "the program ended with $status"

found=$("$story" export "$home/Documents/lamp.scene" --branches --format txt -o -)
for words in "The lamp goes out" "Nobody is awake." "Ada rows for oil"; do
    [[ $found == *"$words"* ]] || fail "\"$words\" is not in the file: $found"
done
if grep -iE '^qt\.|QObject|cannot|could not|error|warning' "$log" >&2; then
    fail "the program complains"
fi
