# Shared by ./demo, ./check and ./bench: installs what is missing and builds. Meant to be sourced by
# a shell that stands in the project's folder.

# Debian packages, by what needs them.
packages_build="g++ cmake ninja-build libopenimageio-dev libcli11-dev nlohmann-json3-dev"
packages_windows="g++-mingw-w64-x86-64-posix wine wine64"
packages_demo="openimageio-tools fonts-dejavu-core"
packages_test="libgtest-dev googletest clang"
packages_bench="libbenchmark-dev"
packages_manual="pandoc"

say() { printf '%s\n' "$*"; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Runs a command, its output kept in a log that is shown only when it fails.
quietly() {
    log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1; then
        tail -n 60 "$log" >&2
        die "failed: $* (all of its output is in $log)"
    fi
}

is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Installs the packages that are missing, as root or through sudo.
need_packages() {
    missing=
    for package in "$@"; do
        is_installed "$package" || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    command -v apt-get >/dev/null 2>&1 ||
        die "this system has no apt-get; install by hand:$missing"
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null 2>&1 ||
            die "run as root, or install these packages yourself:$missing"
        as_root=sudo
    fi
    say "Installing$missing"
    export DEBIAN_FRONTEND=noninteractive
    quietly build/log/apt-update $as_root apt-get update -qq
    # shellcheck disable=SC2086  # the list is meant to be split
    quietly build/log/apt-install $as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -qq -y --no-install-recommends $missing
}

# configure PRESET [CMAKE-ARGUMENT...]
configure() {
    preset=$1
    shift
    quietly "build/log/configure-$preset" cmake --preset "$preset" "$@"
}

# build PRESET [TARGET...]: everything, or the targets named.
build() {
    preset=$1
    shift
    say "Building $preset"
    if [ $# -gt 0 ]; then
        quietly "build/log/build-$preset" cmake --build --preset "$preset" --target "$@"
    else
        quietly "build/log/build-$preset" cmake --build --preset "$preset"
    fi
}

# Lays what was built out as it is installed: dist/linux and dist/windows.
install_builds() {
    quietly build/log/install-linux cmake --install build/release --prefix dist/linux
    quietly build/log/install-windows \
        cmake --install build/windows --prefix dist/windows --component effect
    quietly build/log/install-worker \
        cmake --install build/windows --prefix dist/linux --component worker
}

# The first start of Wine in a new prefix takes some seconds; better here than inside a measurement.
prepare_wine() {
    export VIREON_WINE_PREFIX="$PWD/build/wine-prefix"
    [ -e "$VIREON_WINE_PREFIX/system.reg" ] && return 0
    say "Preparing Wine"
    quietly build/log/wine cmake/run-wine wineboot --init
}
