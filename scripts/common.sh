# What the scripts share; sourced, never run. It leaves the caller in the project's root directory.
# shellcheck shell=bash

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

# Debian's packages by purpose; the one list of what the project needs.
declare -A packages=(
    [build]="g++ cmake ninja-build pkg-config qt6-base-dev libfmt-dev libutf8proc-dev nlohmann-json3-dev
        libxcb1-dev libxcb-composite0-dev libxcb-damage0-dev libxcb-xfixes0-dev libxcb-render0-dev
        libxcb-render-util0-dev libxcb-randr0-dev libxcb-shape0-dev libxcb-res0-dev libxcb-sync-dev libxcb-xinput-dev
        libxcb-xkb-dev libxcb-xtest0-dev libgtest-dev"
    [test]="clang xvfb openbox xfwm4 dbus-daemon xterm gtk-3-examples featherpad tk x11-xkb-utils x11-xserver-utils
        trayer at-spi2-core gtk-4-examples python3-gi gir1.2-gtk-3.0 gir1.2-gtk-4.0 python3-pyqt5 python3-pyqt6"
    [matrix]="chromium libreoffice-writer libreoffice-gtk3"
    [demonstration]="xvfb openbox dbus-daemon xterm gtk-3-examples x11-utils x11-xserver-utils
        xdotool imagemagick"
    [benchmark]="gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-x"
    [coverage]="gcovr"
    [lint]="clang-format clang-tidy shellcheck"
    [fresh-root]="debootstrap"
)

# Ends the script with one line on the standard error. The first argument is the exit status.
die() {
    local status=$1
    shift
    echo "${0##*/}: $*" >&2
    exit "$status"
}

# Installs what is missing of the packages for the given purposes; asks for nothing when all are there.
install_missing() {
    local purpose package wanted=() missing=()
    for purpose in "$@"; do
        # shellcheck disable=SC2206 # one word for each package
        wanted+=(${packages[$purpose]})
    done
    if ! command -v dpkg-query >/dev/null; then
        die 1 "this is not Debian: install the equivalents of these packages and use the CMake presets: ${wanted[*]}"
    fi
    for package in "${wanted[@]}"; do
        # More than one word when the package is installed for several architectures.
        [[ " $(dpkg-query --show --showformat='${db:Status-Status} ' "$package" 2>/dev/null)" == *" installed "* ]] ||
            missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return
    fi

    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            die 1 "neither root nor sudo: ask an administrator for: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    mkdir -p build
    local log=build/apt.log
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o Acquire::Retries=3)
    if ! { "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; } &>"$log"; then
        die 1 "apt-get could not install what is missing (is this machine online?); $log says why"
    fi
}

configure_preset() {
    local log="build/$1-configure.log"
    mkdir -p build
    cmake --preset "$1" &>"$log" || {
        cat "$log" >&2
        die 1 "CMake could not configure the preset \"$1\""
    }
}

# build_preset PRESET [CMAKE BUILD OPTION...]
build_preset() {
    configure_preset "$1"
    cmake --build --preset "$@"
}
