# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv: the package check and the build.

# What the build, the tests and this script call beyond Debian's required packages.
PACKAGES=(cmake g++ make pkg-config libjsoncpp-dev libsystemd-dev libsqlite3-dev
          libgtest-dev libgmock-dev googletest libbenchmark-dev
          sqlite3 jq                 # the tests read the stick's database and the TV's expectations
          bubblewrap                 # the sandbox
          dbus-daemon dbus-bin       # its bus; dbus-send, dbus-monitor, dbus-run-session
          systemd                    # busctl
          shellcheck clang-format    # the checks of kelvo-tv test
          clang clang-tidy libclang-rt-14-dev  # static analysis, ThreadSanitizer, fuzzing
          xvfb dunst                 # a real notification server under an X server of its own
          udev                       # udev.pc: where the launch rule is installed
          xmltv-util                 # tv_validate_file checks the inspector's XMLTV
          libefl-all-dev             # the result popup (Elementary; edje_cc for its theme extension)
          evilwm xfonts-base         # a window manager for the popup's virtual display, and its font
          tesseract-ocr tesseract-ocr-eng xdotool imagemagick)  # the popup's tests: read the screen, click OK

ensure_packages() {
    local missing=() p
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "kelvo-tv: missing packages; as root run:" >&2
        echo "apt-get install -y ${missing[*]}" >&2
        exit 1
    fi
    note "installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -q
    apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Configures and builds a preset quietly; the log's tail is shown when it fails.
build_preset() {
    local preset=$1 log="$STATE/build-$1.log"
    mkdir -p "$STATE"
    note "building (preset $preset, log $log)"
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" -j2; } >"$log" 2>&1 </dev/null; then
        tail -n 40 "$log" >&2
        die "build of preset $preset failed (full log: $log)"
    fi
}

# Sets BUILD_DIR: the given one as it is, or build/<preset> after the package check and build.
prepare_build() {
    if [ -n "$BUILD_DIR" ]; then
        BUILD_DIR=$(absolute "$BUILD_DIR")
        return 0
    fi
    BUILD_DIR="$ROOT/build/$PRESET"
    [ "$NO_BUILD" -eq 1 ] && return 0
    ensure_packages
    build_preset "$PRESET"
}

is_sanitized_build() { grep -q '^KELVO_SANITIZE:BOOL=ON' "$1/CMakeCache.txt" 2>/dev/null; }

supervisor() { printf '%s' "$BUILD_DIR/tools/supervisor/kelvo-tv-supervisor"; }
