#!/usr/bin/env bash
# Runs a test program with its temporary files on a disk of one megabyte, which only that program sees.
#   full-tmpfs.sh build/release/tests/tst_fulltmpfs
# Where no disk may be mounted, as in most containers, the test is skipped (77) and says why. With
# FABLEGRID_MAY_MOUNT=1 that is a failure.
set -euo pipefail

program=$(realpath "$1")
shift

folder=$(mktemp -d)
trap 'rmdir "$folder"' EXIT

# Whoever may not mount becomes, for this one program, a superuser in a world of its own.
world=(--mount)
if [[ $(id -u) -ne 0 ]]; then
    world+=(--user --map-root-user)
fi

# shellcheck disable=SC2016 # expanded by the inner shell
mounting='mount -t tmpfs -o size=1m,nr_inodes=200 tmpfs "$1"'
if ! complaint=$(unshare "${world[@]}" bash -c "$mounting" full-tmpfs "$folder" 2>&1); then
    echo "Skipped: this machine lets nobody mount a disk of its own: ${complaint//$'\n'/ }"
    if [[ ${FABLEGRID_MAY_MOUNT:-} == 1 ]]; then
        exit 1
    fi
    exit 77
fi

# shellcheck disable=SC2016 # expanded by the inner shell
unshare "${world[@]}" bash -euo pipefail -c "$mounting"'
    export TMPDIR=$1
    shift
    exec "$@"
' full-tmpfs "$folder" "$program" "$@"
