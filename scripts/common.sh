# What the scripts share. Sourced by bash, from any folder.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() {
    printf '== %s\n' "$*" >&2
}

fail() {
    printf '!! %s\n' "$*" >&2
    exit 1
}

# as_root COMMAND...: runs a command with the rights that installing takes.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        command -v sudo >/dev/null || fail "Installing packages takes root or sudo: $*"
        sudo "$@"
    fi
}

# apt ARGUMENTS...: apt-get without questions, waiting for another apt to finish.
apt() {
    local errors attempt
    errors=$(mktemp)
    for attempt in $(seq 1 120); do
        if as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=600 "$@" \
            2>"$errors"; then
            rm -f "$errors"
            return 0
        fi
        # The lock of the package lists is the one that apt does not wait for by itself.
        grep -q 'Could not get lock' "$errors" || break
        say "Another apt is at work, waiting ($attempt)"
        sleep 5
    done
    cat "$errors" >&2
    rm -f "$errors"
    fail "apt-get $* failed"
}

is_installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# need_packages GROUP...: installs what is missing of these groups of packaging/packages.list.
need_packages() {
    command -v dpkg-query >/dev/null || {
        say "No dpkg here: taking the packages of packaging/packages.list for installed"
        return 0
    }
    local group package missing=()
    while read -r group package _; do
        case " $* " in
        *" $group "*) is_installed "$package" || missing+=("$package") ;;
        esac
    done < <(grep -v '^#' "$root/packaging/packages.list")
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    apt update
    apt install --yes --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures where needed and builds, showing progress.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    cd "$root"
    cmake --preset "$preset" >"$root/build-$preset.log" 2>&1 || {
        cat "$root/build-$preset.log" >&2
        fail "Configuring failed"
    }
    rm -f "$root/build-$preset.log"
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}

# The version of the project, as its CMakeLists.txt has it.
project_version() {
    sed -nE 's/^project\(Navrel VERSION ([0-9.]+) .*/\1/p' "$root/CMakeLists.txt"
}
