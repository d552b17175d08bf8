# Shared by run, test and .ci/run: source it, then call the functions.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# packages_of GROUP...: the names that deploy/packages lists below [GROUP].
packages_of() {
    local group
    for group in "$@"; do
        sed -n "/^\[$group\]/,/^\[/p" "$root/deploy/packages" | grep -v -e '^\[' -e '^#' -e '^$'
    done
}

# install_packages GROUP...: installs what is missing, and asks nothing when nothing is.
install_packages() {
    local package missing=()
    while read -r package; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done < <(packages_of "$@")
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# install_cross: what a cross build for arm64 needs. Takes the architecture back out of this machine's package management
# when nothing can be had for it.
install_cross() {
    [ "$(dpkg --print-architecture)" = arm64 ] && return
    local added=
    if ! dpkg --print-foreign-architectures | grep -q -x arm64; then
        as_root dpkg --add-architecture arm64
        added=yes
    fi
    install_packages cross && return
    [ -z "$added" ] || as_root dpkg --remove-architecture arm64
    return 1
}

# build PRESET [TARGET...]: configures when there is no build yet, then builds. CMake configures again by itself when a
# list of files changed.
build() {
    local preset=$1
    shift
    cd "$root" || return
    if [ ! -f "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"build-$preset.log" 2>&1 || { cat "build-$preset.log"; return 1; }
        mv "build-$preset.log" "build/$preset/configure.log"
    fi
    cmake --build "build/$preset" ${1:+--target "$@"}
}

# prepare_machine PROGRAM: everything for the virtual machine, which ends in build/vm, and the program of this machine that
# uses it. What is there and up to date is not made again. What it prints goes to build/vm.log. Fails, with the reason
# printed, where the emulator or the cross compiler can't be installed.
prepare_machine() {
    install_packages build run test packages vm || { echo "the emulator and what belongs to it can't be installed here"; return 1; }
    install_cross || { echo "the arm64 packages of the cross build can't be installed here"; return 1; }
    mkdir -p "$root/build"
    if ! make_machine "$1" >"$root/build/vm.log" 2>&1; then
        tail -n 60 "$root/build/vm.log"
        exit 1
    fi
}

# prepare_page: the simulated machine for a browser, build/web/machine.html. What it prints goes to build/web.log. Fails,
# with the reason printed, where emscripten can't be installed.
prepare_page() {
    install_packages build test browser || { echo "emscripten and what belongs to it can't be installed here"; return 1; }
    mkdir -p "$root/build"
    if ! build release machine_page >"$root/build/web.log" 2>&1; then
        tail -n 60 "$root/build/web.log"
        exit 1
    fi
}

make_machine() {
    build release "$1" && "$root/deploy/scripts/package" arm64 && "$root/bench/vm/guest/build" "$root/build/vm" "$root/build/packages/arm64"
}
