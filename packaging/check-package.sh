#!/usr/bin/env bash
# Installs the package into a new minimal Debian 12, starts the program there under a virtual display, removes
# the package, and looks for what is left: check-package.sh [package]
# Needs root and the Debian registry. Nothing of it is left behind on this machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

source packaging/newdebian.bash
packaging/install-dependencies.sh package
package=${1:-$(packaging/build-package.sh)}

trap remove_debian EXIT
make_debian
files() {
    # What a package manager notes about itself is no trace of the program.
    inside find / -xdev \( -path /proc -o -path /dev -o -path /sys -o -path /tmp -o -path /var/cache \
        -o -path /var/log -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /root \) -prune -o -print |
        sort
}

inside apt-get -qq update
inside apt-get -qq install -y --no-install-recommends xvfb xauth x11-utils fonts-dejavu-core >/dev/null 2>&1
files >"$debian_root/tmp/before"

cp "$package" "$debian_root/tmp/fablegrid.deb"
inside apt-get -qq install -y --no-install-recommends /tmp/fablegrid.deb >/dev/null 2>&1
inside dpkg --listfiles fablegrid

# The manual is found, and shells find what they offer where they look for it.
share=$debian_root/usr/share
# shellcheck disable=SC2016 # expanded by the inner shell
if ! [[ -s $share/zsh/vendor-completions/_fablegrid-story &&
    -s $share/fish/vendor_completions.d/fablegrid-story.fish ]] ||
    ! inside zgrep -q 'fablegrid.*story export' /usr/share/man/man1/fablegrid-story.1.gz ||
    ! inside bash -c 'source /usr/share/bash-completion/completions/fablegrid-story
        COMP_WORDS=(fablegrid-story ex) COMP_CWORD=1
        "$(complete -p fablegrid-story | cut -d " " -f 3)"
        [[ ${COMPREPLY[*]} == export ]]'; then
    echo "The manual or the completions of the command are not installed, or do not work." >&2
    exit 1
fi

# The command needs no display, and what it links has to have come along.
cp docs/examples/the-lighthouse.scene "$debian_root/tmp/"
inside su writer -c "fablegrid-story export /tmp/the-lighthouse.scene -o - --format md | grep -q 'The light returns' &&
    fablegrid-story picture /tmp/the-lighthouse.scene -o - --format svg | grep -q 'The light returns'" || {
    echo "The installed command does not work." >&2
    exit 1
}

# What is on the screen while it runs, and what it says.
cat >"$debian_root/tmp/start" <<'END'
#!/bin/bash
fablegrid 2>/tmp/said &
program=$!
for _ in $(seq 100); do
    if xwininfo -root -tree | grep -q '"Fablegrid v0.1a"'; then
        xprop -name "Fablegrid v0.1a" WM_CLASS
        kill "$program"
        exit 0
    fi
    kill -0 "$program" 2>/dev/null || break
    sleep 0.2
done
cat /tmp/said
exit 1
END
chmod 755 "$debian_root/tmp/start"
if ! inside su writer -c "cd; XDG_RUNTIME_DIR=/tmp/runtime-writer; export XDG_RUNTIME_DIR
        mkdir -p -m 700 /tmp/runtime-writer; xvfb-run -a /tmp/start"; then
    echo "The installed program does not come up." >&2
    exit 1
fi
# Its own lines are about the work; what begins otherwise is a complaint of the system below it.
if grep -iE 'qt\.|cannot|could not|error|warning' "$debian_root/tmp/said" >&2; then
    echo "The installed program complains." >&2
    exit 1
fi

inside apt-get -qq purge -y --autoremove fablegrid >/dev/null 2>&1
files >"$debian_root/tmp/after"
diff "$debian_root/tmp/before" "$debian_root/tmp/after" >"$debian_root/tmp/differs" || [[ $? -eq 1 ]]
grep -E '^[<>]' "$debian_root/tmp/differs" >"$debian_root/tmp/left" || true
if [[ ! -s $debian_root/tmp/left ]]; then
    echo "Installed, started and removed in a new Debian 12; nothing is left."
    exit 0
fi
if grep -i fablegrid "$debian_root/tmp/left" >&2; then
    echo "The removed package leaves these files." >&2
    exit 1
fi
echo "Installed, started and removed in a new Debian 12; of the program nothing is left. Other packages left:"
cat "$debian_root/tmp/left"
