#!/usr/bin/env bash
# Makes sure that the Debian packages for one purpose are installed:
#   run      building and starting the application
#   test     running its tests as well (virtual display, window manager, synthetic input)
#   lint     ./lint
#   environments
#            working with the program on other screens, see tests/environments
#   package  making, checking and trying out the Debian package
#   ci       all of that, the further checks of .ci/run (fuzzing, other people's programs, shells), and coverage
# Silent and quick when nothing is missing. When something is and cannot be installed, says so and fails.
set -euo pipefail

run_packages=(g++ cmake ninja-build qt6-base-dev qt6-base-dev-tools qt6-svg-dev fonts-dejavu-core libcmark-dev)
test_packages=(xvfb xauth openbox xdotool libxcb1-dev)
lint_packages=(clang-14 clang-format-14 clang-tidy-14 clazy git)
package_packages=(dpkg-dev fakeroot file git lintian desktop-file-utils appstream mandoc debootstrap)
# What reads the files that stories are exported to.
peer_packages=(pandoc poppler-utils libxml2-utils librsvg2-bin graphviz sqlite3 python3-jsonschema)
environment_packages=(xvfb openbox xdotool imagemagick x11-utils)
# What its completions are tried in.
shell_packages=(bash zsh fish)
ci_packages=(gcovr python3 libclang-rt-14-dev qt6-l10n-tools strace weston qt6-wayland)

case "${1:-}" in
    run) wanted=("${run_packages[@]}") ;;
    test) wanted=("${run_packages[@]}" "${test_packages[@]}") ;;
    lint) wanted=("${run_packages[@]}" "${lint_packages[@]}") ;;
    environments) wanted=("${run_packages[@]}" "${environment_packages[@]}") ;;
    package) wanted=("${run_packages[@]}" "${package_packages[@]}") ;;
    ci)
        wanted=("${run_packages[@]}" "${test_packages[@]}" "${lint_packages[@]}" "${package_packages[@]}"
            "${peer_packages[@]}" "${shell_packages[@]}" "${environment_packages[@]}"
            "${ci_packages[@]}")
        ;;
    *)
        echo "usage: ${0##*/} run|test|lint|environments|package|ci" >&2
        exit 2
        ;;
esac

# Qt reaches an X display by itself; a session with nothing but Wayland needs one more plugin.
if [[ -n ${WAYLAND_DISPLAY:-} && -z ${DISPLAY:-} ]]; then
    wanted+=(qt6-wayland)
fi

fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    fail "Fablegrid is set up for Debian 12, and this system has no dpkg and apt." \
        "Needed are the packages: ${wanted[*]}"
fi

# dpkg-query fails when it does not know one of the names; what it does know is still listed.
installed=" $(dpkg-query --show --showformat '${Package}:${db:Status-Status} ' "${wanted[@]}" 2>/dev/null || true)"
missing=()
for package in "${wanted[@]}"; do
    [[ $installed == *" $package:installed "* ]] || missing+=("$package")
done
if ((${#missing[@]} == 0)); then
    exit 0
fi

as_root=()
if ((EUID != 0)); then
    if command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
        as_root=(sudo -n)
    else
        fail "Missing packages: ${missing[*]}" \
            "Only root may install them: sudo apt-get install --no-install-recommends ${missing[*]}"
    fi
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q "$@" </dev/null >>"$log" 2>&1
}

echo "Installing packages: ${missing[*]}"
# A list that could not be refreshed may still serve, so only the installation decides.
apt_get update || true
if ! apt_get install -y --no-install-recommends "${missing[@]}"; then
    reason=$(grep '^E: ' "$log" | head -n 1 || true)
    fail "Could not install the packages: ${missing[*]}" "apt-get: ${reason:-no reason given}"
fi
