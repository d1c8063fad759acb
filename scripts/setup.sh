# Sourced by the scripts of the root: what they need before they can run. Sets `root`, `preset` and `build`.
# Everything here says little and costs little when there is nothing to do.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Chooses the preset that is configured and built, and with it the build folder.
use_preset() {
    preset=$1
    build=$root/build/$preset
}
use_preset release

# Installs what the given lists name, scripts/packages.txt if none is given, and the machine lacks. Asks the
# package database first, so that a machine that has everything needs neither a network nor rights.
install_packages() {
    local wanted missing=() package sudo=()
    [ "$#" -gt 0 ] || set -- "$root/scripts/packages.txt"
    mapfile -t wanted < <(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$@")
    local installed
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null |
        sed -n 's/^installed //p' || true)
    for package in "${wanted[@]}"; do
        grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    echo "installing: ${missing[*]}" >&2
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    # The index that a machine brings may know these packages already; only if not is it fetched anew.
    "${sudo[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}" >&2 || {
        "${sudo[@]}" apt-get update -q >&2
        "${sudo[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
    }
}

# Configures the chosen preset unless this very tree has been configured already.
configure() {
    if [ -f "$build/build.ninja" ] && grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"; then
        return 0
    fi
    rm -rf "$build/CMakeCache.txt" "$build/CMakeFiles"
    (cd "$root" && cmake --preset "$preset") >&2
}

# Builds the given targets, all of them when none is given. Quiet unless there is something to do or to complain of.
build_targets() {
    local options=()
    [ "$#" -eq 0 ] || options=(--target "$@")
    NINJA_STATUS='[%f/%t] ' cmake --build "$build" "${options[@]}" >&2
}

# Whether there is a display that answers.
have_display() {
    [ -n "${DISPLAY:-}" ] && timeout 5 xdotool getdisplaygeometry >/dev/null 2>&1
}

# Qt complains where a login session has not set this up.
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    export XDG_RUNTIME_DIR=${TMPDIR:-/tmp}/runtime-$(id -un)
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
fi

# Runs a command under a virtual display that goes away with it. It does not start anew whenever the last
# program leaves it, which would turn away one that comes in that moment.
with_virtual_display() {
    xvfb-run -a -s "-screen 0 1600x1200x24 -noreset" "$@"
}
