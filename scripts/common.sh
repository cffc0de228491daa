# What ./run and ./test share; sourced by both.  $top is the top of the checkout.

# Everything that building, running and testing need, as Debian packages.
packages="
  g++ cmake ninja-build
  qtbase5-dev qttools5-dev qttools5-dev-tools qttranslations5-l10n
  qtmultimedia5-dev libqt5multimedia5-plugins
  nlohmann-json3-dev
  pkg-config libpcsclite-dev libpcap-dev pcscd libmbim-glib-dev libudev-dev
  dpkg-dev file help2man
  fonts-dejavu-core fonts-noto-core fonts-noto-color-emoji fonts-wqy-microhei"
test_packages="
  libgtest-dev libbenchmark-dev
  vsmartcard-vpcd libmbim-proxy
  xvfb xauth openbox xdotool x11-utils
  lintian desktop-file-utils appstream
  pulseaudio pulseaudio-utils"
# What takes the place of Qt 5's where everything is built with Qt 6.
qt6_packages="
  qt6-base-dev qt6-multimedia-dev
  qt6-tools-dev qt6-l10n-tools qt6-translations-l10n"
# Not on every architecture; the tests do without it where it is missing.
multilib_package=g++-multilib

# install_missing PACKAGE...: installs what is not there yet.
install_missing() {
    missing=
    for package in "$@"; do
        status=$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null || true)
        case $status in
        ii*) ;;
        *) missing="$missing $package" ;;
        esac
    done
    [ -n "$missing" ] || return 0
    echo "Installing:$missing"
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing and only root can install them (there is no sudo):$missing" >&2
            return 1
        fi
        as_root=sudo
    fi
    $as_root env DEBIAN_FRONTEND=noninteractive sh -c "
        apt-get -q update &&
        apt-get -q install -y --no-install-recommends $missing" >"$log" 2>&1 || {
        cat "$log" >&2
        echo "The packages above could not be installed." >&2
        return 1
    }
}

# build FOLDER [CMAKE OPTION...]: configures and builds; silent unless something is wrong.
build() {
    folder=$1
    shift
    cmake -G Ninja -S "$top" -B "$top/$folder" "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        echo "$folder could not be configured." >&2
        return 1
    }
    cmake --build "$top/$folder" >"$log" 2>&1 || {
        cat "$log" >&2
        echo "$folder could not be built." >&2
        return 1
    }
    if grep -q "warning:" "$log"; then
        cat "$log" >&2
        echo "The build of $folder was not free of warnings." >&2
        return 1
    fi
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
