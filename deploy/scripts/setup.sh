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
