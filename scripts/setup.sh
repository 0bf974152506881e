# Sourced by the other scripts: installs what the build needs, and configures and builds a preset.

packages=(g++ cmake ninja-build libflatbuffers-dev flatbuffers-compiler libcli11-dev libgtest-dev nlohmann-json3-dev
    libxxhash-dev python3 python3-jsonschema pkg-config)

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "This needs root and there is no sudo; as root: apt-get install ${packages[*]}" >&2
        return 1
    fi
}

is_installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

install_packages() {
    local missing=() package
    for package in "${packages[@]}"; do
        is_installed "$package" || missing+=("$package")
    done
    if [ "${#missing[@]}" -gt 0 ]; then
        echo "Installing ${missing[*]} ..." >&2
        as_root apt-get update -qq >&2
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
    fi
}

# build PRESET [TARGET...]: what is up to date is not built again.
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >&2
    cmake --build --preset "$preset" ${1:+--target "$@"} | sed '/no work to do/d; /Re-checking globbed/d' >&2
}
