#!/usr/bin/env bash
# Works with the program where people run it:
#   run.sh [screens] [wayland] [container] [user]      all four if none is named
# screens     on a display of 800 x 600, and on one of 3840 x 2160 at a device pixel ratio of 2
# wayland     as a Wayland client; weston runs in a window of its own, since without one it has no keyboard
# container   ./run and ./test in a new minimal Debian 12, as a superuser who may neither mount anything nor
#             make name spaces, as in an ordinary container
# user        the same as an ordinary user, with the packages installed
# The first two take a minute each with build/release; the others build everything, once for both, and need root
# and the Debian registry. What is not possible here is named and left out. The screen of each step is kept in
# build/environments.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

source packaging/newdebian.bash
pictures=$PWD/build/environments
here=$PWD/tests/environments
processes=()

clean_up() {
    end_display
    remove_debian
}
end_display() {
    for process in "${processes[@]}"; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    processes=()
}
trap clean_up EXIT

# An X display of that size with a window manager, as $DISPLAY.
start_display() {
    local number
    exec {numbers}< <(exec Xvfb -displayfd 1 -screen 0 "$1x24" -nolisten tcp 2>/dev/null)
    processes+=($!)
    read -r -t 30 number <&"$numbers"
    export DISPLAY=:$number
    openbox >/dev/null 2>&1 &
    processes+=($!)
    until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; do
        sleep 0.1
    done
}

# A session whose pictures are kept under that name; what follows are its environment and the window's size.
work() {
    local name=$1 size=$2
    shift 2
    rm -rf "${pictures:?}/$name"
    mkdir -p "$pictures/$name"
    env QT_QPA_PLATFORMTHEME= LC_ALL=C.UTF-8 "$@" "$here/session.sh" "$pictures/$name" build/release/src/fablegrid \
        build/release/src/fablegrid-story "$size"
    echo "$name: started, written, saved, opened, written again and saved"
}

try_screens() {
    start_display 800x600
    work 800x600 800x560
    end_display
    start_display 3840x2160
    work 3840x2160 3840x2120 QT_SCALE_FACTOR=2
    end_display
}

try_wayland() {
    if ! command -v weston >/dev/null; then
        echo "wayland: left out, the packages weston and qt6-wayland are not installed"
        return
    fi
    start_display 1600x900
    local runtime
    runtime=$(mktemp -d)
    # No panel, and nobody who locks the screen.
    printf '[core]\nidle-time=0\nrequire-input=false\n[shell]\npanel-position=none\nlocking=false\n' >"$runtime/weston.ini"
    XDG_RUNTIME_DIR=$runtime weston --backend=x11-backend.so --use-pixman --width=1600 --height=860 \
        --config="$runtime/weston.ini" --socket=environments >"$runtime/log" 2>&1 &
    processes+=($!)
    for ((i = 0; i < 150; ++i)); do
        [[ ! -S $runtime/environments ]] || break
        sleep 0.2
    done
    [[ -S $runtime/environments ]] || { cat "$runtime/log" >&2; exit 1; }
    work wayland "" QT_QPA_PLATFORM=wayland WAYLAND_DISPLAY=environments SESSION_RUNTIME="$runtime"
    end_display
    rm -rf "$runtime"
}

# With a copy of what is committed.
make_debian_once() {
    [[ -z $debian_root ]] || return 0
    make_debian
    mkdir "$debian_root/fablegrid"
    git archive HEAD | tar -x -C "$debian_root/fablegrid"
}

# Without a display ./run says so; with one the program is worked with; then all the tests.
both_commands='
    ./run </dev/null 2>&1 | tee run.log
    grep -q "there is no display" run.log
    ./test
    packaging/install-dependencies.sh environments
    mkdir -p pictures
    xvfb-run -a -s "-screen 0 1600x900x24" bash -c "openbox & sleep 2
        tests/environments/session.sh pictures ./run build/release/src/fablegrid-story"'

# A new root is what keeps a superuser from making name spaces.
try_container() {
    make_debian_once
    inside setpriv --bounding-set=-sys_admin --inh-caps=-sys_admin bash -c "cd /fablegrid; set -e; $both_commands"
    keep_pictures container
}

try_user() {
    make_debian_once
    inside /fablegrid/packaging/install-dependencies.sh test
    inside /fablegrid/packaging/install-dependencies.sh environments
    inside chown -R writer: /fablegrid
    inside setpriv --reuid=writer --regid=writer --init-groups env HOME=/home/writer \
        bash -c "cd /fablegrid; set -e; $both_commands"
    keep_pictures user
}

keep_pictures() {
    rm -rf "${pictures:?}/$1"
    mkdir -p "$pictures"
    mv "$debian_root/fablegrid/pictures" "$pictures/$1"
    echo "$1: both commands passed, and a session"
}

if (($# == 0)); then
    set -- screens wayland container user
fi
packaging/install-dependencies.sh environments
for environment in "$@"; do
    case $environment in
        screens | wayland)
            [[ -x build/release/src/fablegrid ]] || {
                echo "build/release must be built first" >&2
                exit 2
            }
            ;;
        container | user)
            if ((EUID != 0)); then
                echo "$environment: left out, only root can make a new system"
                continue
            fi
            ;;
        *)
            echo "usage: ${0##*/} [screens] [wayland] [container] [user]" >&2
            exit 2
            ;;
    esac
    "try_$environment"
done
