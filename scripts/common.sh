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
        sudo "$@"
    fi
}

# show_progress: reads the status lines of apt-get and prints a line every ten per cent.
show_progress() {
    awk -F: '
        $1 == "dlstatus" || $1 == "pmstatus" {
            doing = $1 == "dlstatus" ? "Downloading" : "Installing"
            if (doing != shown) { shown = doing; next_step = 0 }
            if ($3 >= next_step) {
                printf "   %s: %d %%\n", doing, $3
                fflush()
                next_step = 10 * (int($3 / 10) + 1)
            }
        }' >&2
}

# apt ARGUMENTS...: apt-get without questions, waiting for another apt to finish.
apt() {
    local errors attempt
    errors=$(mktemp)
    for attempt in $(seq 1 120); do
        if as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=600 \
            -o APT::Status-Fd=1 "$@" 2>"$errors" | show_progress; then
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

# wanted_packages GROUP...: what packaging/packages.list has for these groups, alternatives as they stand there.
wanted_packages() {
    local group package
    while read -r group package _; do
        case " $* " in
        *" $group "*) printf '%s\n' "$package" ;;
        esac
    done < <(grep -v '^#' "$root/packaging/packages.list") | sort -u
}

# knows_package PACKAGE: whether the system's apt could install it.
knows_package() {
    apt-cache policy "$1" 2>/dev/null | grep 'Candidate: [^(]' >/dev/null
}

# chosen_package A|B...: the first of the alternatives that the system's apt knows, or the first of all while it knows
# none.
chosen_package() {
    local name names
    IFS='|' read -ra names <<<"$1"
    for name in "${names[@]}"; do
        ! knows_package "$name" || break
        name=${names[0]}
    done
    printf '%s\n' "$name"
}

# missing_packages A|B...: those that are not installed. A package that another one provides is installed.
missing_packages() {
    local alternatives name installed
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}, ${Provides}\n' |
        sed -nE '/^installed /{s///; s/ \([^)]*\)//g; s/,//g; p}' | tr '\n' ' ')
    for alternatives in "$@"; do
        name=${alternatives%%|*}
        # Asking apt takes a while, so only where the first choice is not here.
        [[ $alternatives != *"|"* || " $installed " == *" $name "* ]] || name=$(chosen_package "$alternatives")
        [[ " $installed " == *" $name "* ]] || printf '%s\n' "$name"
    done
}

# need_packages GROUP...: installs what is missing of these groups of packaging/packages.list.
need_packages() {
    command -v dpkg-query >/dev/null || {
        say "No dpkg here: taking the packages of packaging/packages.list for installed"
        return 0
    }
    local wanted missing
    mapfile -t wanted < <(wanted_packages "$@")
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    [ ${#missing[@]} -gt 0 ] || return 0
    [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null ||
        fail "Packages are missing, and only root can install them. Run this as root, install sudo, or have an \
administrator run: apt-get install --no-install-recommends ${missing[*]}"
    say "Reading the package lists"
    apt update
    # Now apt may know more alternatives.
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    say "Installing ${#missing[@]} packages and what they need: ${missing[*]}"
    apt install --yes --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET|-DNAME=VALUE...]: configures where needed and builds, showing progress.
build() {
    local preset=$1 argument settings=() targets=()
    shift
    for argument; do
        case $argument in
        -D*) settings+=("$argument") ;;
        *) targets+=("$argument") ;;
        esac
    done
    say "Building ($preset)"
    cd "$root"
    mkdir -p build
    cmake --preset "$preset" "${settings[@]}" >"build/$preset.log" 2>&1 || {
        cat "build/$preset.log" >&2
        fail "Configuring failed"
    }
    cmake --build --preset "$preset" ${targets:+--target "${targets[@]}"} >&2
}

# The version of the project, as its CMakeLists.txt has it.
project_version() {
    sed -nE 's/^project\(Navrel VERSION ([0-9.]+) .*/\1/p' "$root/CMakeLists.txt"
}
