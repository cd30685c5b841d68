# Shared by run, test and .ci/run: says what it does in one line a step, keeps the output of every tool
# in a log and shows it only when the tool fails.

Root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
Installed=                                          # set once packages were added
StartedAt=$SECONDS

# Steps go to stderr: stdout belongs to the program that `run` starts.
step()
{
    printf '[%3ds] %s\n' $((SECONDS - StartedAt)) "$*" >&2
}

fail()
{
    printf '%s\n' "$*" >&2
    exit 3
}

# quietly LOG COMMAND... - runs a command, shows the end of its output and stops when it fails.
quietly()
{
    local Log=$Root/build/logs/$1.log
    shift
    mkdir -p "$Root/build/logs"
    if ! "$@" >"$Log" 2>&1 </dev/null; then
        tail -n 80 "$Log" >&2
        fail "Failed: $* (whole output in $Log)"
    fi
}

as_root()
{
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

apt_install()
{
    as_root apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=300 "$@"
}

# The package lists of an image are often missing or older than the packages that the mirror still has.
apt_install_fresh()
{
    apt_install "$@" || { as_root apt-get update -qq && apt_install "$@"; }
}

# need PACKAGE... - installs those that are missing. On other systems than Debian and its kin the tools
# are taken as they are: cmake says what it does not find.
need()
{
    command -v dpkg-query >/dev/null && command -v apt-get >/dev/null || return 0
    local Package Missing=()
    for Package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$Package" 2>/dev/null)" = installed ] ||
            Missing+=("$Package")
    done
    [ ${#Missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        fail "Missing packages; as root run: apt-get install ${Missing[*]}"
    fi
    step "Installing ${Missing[*]}"
    # sudo may ask for a password here, which the log would hide.
    [ "$(id -u)" -eq 0 ] || sudo -v
    quietly install apt_install_fresh "${Missing[@]}"
    Installed=yes
}

need_compiler()
{
    need g++ cmake ninja-build pkg-config libsqlite3-dev mdbtools-dev libcli11-dev nlohmann-json3-dev "$@"
}

# build PRESET [TARGET] - configures when needed and builds what is out of date.
build()
{
    local Preset=$1 Target=${2:-all} Dir=$Root/build/$1
    # One build of a preset at a time; the second one then finds nothing left to do.
    mkdir -p "$Root/build"
    exec 9>"$Root/build/$Preset.lock"
    flock 9
    if [ -n "$Installed" ] || [ ! -e "$Dir/build.ninja" ] ||
        [ "$Root/CMakePresets.json" -nt "$Dir/build.ninja" ]; then
        step "Configuring $Preset"
        quietly "configure-$Preset" cmake -S "$Root" --preset "$Preset"
    fi
    if ! ninja -C "$Dir" -n "$Target" 2>/dev/null | grep -q 'no work to do'; then
        step "Building $Preset"
        quietly "build-$Preset" cmake --build "$Dir" --target "$Target"
    fi
    exec 9>&-
}
