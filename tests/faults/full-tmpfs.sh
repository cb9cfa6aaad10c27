#!/usr/bin/env bash
# Runs a test program with its temporary files on a disk of one megabyte, which only that program sees.
#   full-tmpfs.sh build/release/tests/tst_fulltmpfs
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
unshare "${world[@]}" bash -euo pipefail -c '
    mount -t tmpfs -o size=1m,nr_inodes=200 tmpfs "$1"
    export TMPDIR=$1
    shift
    exec "$@"
' full-tmpfs "$folder" "$program" "$@"
