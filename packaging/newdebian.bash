# A new minimal Debian 12 beside this one, for scripts that source this file from the project's root:
#   make_debian, inside COMMAND..., remove_debian
# Needs root and the Debian registry.

debian_root= # empty while there is none
debian_mounts=()

# Within what has to stand there for programs to be installed and run, with this machine's way to the registry.
make_debian() {
    local registry=${FABLEGRID_DEBIAN_REGISTRY:-http://deb.debian.org/debian} log place
    packaging/install-dependencies.sh package
    debian_root=$(mktemp -d -p /var/tmp fablegrid-debian.XXXXXX)
    chmod 755 "$debian_root"
    log=$debian_root.log
    debootstrap --variant=minbase bookworm "$debian_root" "$registry" >"$log" 2>&1 || {
        tail -n 20 "$log" >&2
        rm -f "$log"
        return 1
    }
    rm -f "$log"
    for place in proc dev; do
        # Without the right to mount there is less in the new system, but enough.
        if mount --rbind "/$place" "$debian_root/$place" 2>/dev/null; then
            mount --make-rslave "$debian_root/$place"
            debian_mounts+=("$debian_root/$place")
        fi
    done
    cp /etc/resolv.conf "$debian_root/etc/resolv.conf"
    # A machine that reaches the registry through a proxy, or with an old clock, says so in its settings.
    grep -hrsE '^Acquire::(https?::|Check-).*;$' /etc/apt/apt.conf.d /etc/apt/apt.conf \
        >"$debian_root/etc/apt/apt.conf.d/90host" || true
    inside useradd --create-home writer
}

inside() {
    chroot "$debian_root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root \
        DEBIAN_FRONTEND=noninteractive http_proxy="${http_proxy:-}" https_proxy="${https_proxy:-}" "$@"
}

remove_debian() {
    local place
    for place in "${debian_mounts[@]}"; do
        umount --lazy "$place"
    done
    debian_mounts=()
    [[ -z $debian_root ]] || rm -rf --one-file-system "$debian_root"
    debian_root=
}
