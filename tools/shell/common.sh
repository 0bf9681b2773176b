# Shared by run and check: packages, configuration, build, a private X server. Sourced with the project's root as
# working directory.

say() { printf '%s\n' "$*" >&2; }

# Installs the packages of packages.txt that are missing.
install_packages() {
    local missing=() package
    while read -r package; do
        case $package in '' | '#'*) continue ;; esac
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done < packages.txt
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    say "installing: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

# Configures and builds a preset: build_preset release [target...]
build_preset() {
    local preset=$1
    shift
    if [ ! -f "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"build-$preset.log" 2>&1 || { cat "build-$preset.log" >&2; return 1; }
        rm -f "build-$preset.log"
    fi
    ninja -C "build/$preset" "$@" >&2
}

# Environment in which the build tree's program finds its data without being installed.
use_build_data() {
    local data=$PWD/build/$1/data
    export UIDPATH=$data/uid/%U
    export NLSPATH=$data/nls/msg/C/%N
    export XFILESEARCHPATH=$data/app-defaults/%N
    export TESSALY_HELP=$data/help
    export TESSALY_DOMAIN=${TESSALY_DOMAIN:-$PWD/data/domains/demo.toml}
}

# Starts an X server of its own, with mwm when asked for: start_x [SCREEN] [mwm]. Ends it with the script.
start_x() {
    local screen=${1:-1280x1024x24} pipe
    pipe=$(mktemp -u) && mkfifo "$pipe"
    Xvfb -displayfd 3 -screen 0 "$screen" -nolisten tcp 3>"$pipe" >/dev/null 2>&1 &
    x_server=$!
    trap 'kill $x_server 2>/dev/null; wait $x_server 2>/dev/null' EXIT
    DISPLAY=:$(head -n 1 "$pipe")
    rm -f "$pipe"
    export DISPLAY
    if [ "${2:-}" = mwm ]; then
        mwm >/dev/null 2>&1 &
        local tries=100
        until xprop -root _MOTIF_WM_INFO 2>/dev/null | grep -q '=\|window' || [ $((tries -= 1)) -eq 0 ]; do
            sleep 0.05
        done
    fi
}
