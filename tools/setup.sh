# Shared by ./run, ./test and .ci/run: what is missing gets installed, what has changed gets built.
# Everything said here goes to the standard error, so that the standard output stays the program's own.

readonly build_dir="$project_dir/build/release"

say() { printf '%s\n' "$*" >&2; }
die() {
    say "error: $*"
    exit 1
}

# have_header FILE: whether the compiler's usual places hold this header.
have_header() {
    local place
    for place in /usr/include /usr/local/include; do
        [[ -e $place/$1 ]] && return 0
    done
    return 1
}

# have PACKAGE: whether what we need of the package is there, wherever it came from.
have() {
    case $1 in
        cmake) command -v cmake ;;
        ninja-build) command -v ninja ;;
        g++) command -v g++ || [[ -n ${CXX:-} ]] ;;
        libcli11-dev) have_header CLI/CLI.hpp ;;
        libfmt-dev) have_header fmt/core.h ;;
        libgtest-dev) have_header gtest/gtest.h ;;
        pkg-config) command -v pkg-config ;;
        doxygen) command -v doxygen ;;
    esac >/dev/null 2>&1
}

# as_root COMMAND...: runs it with the rights that installing needs.
as_root() {
    if [[ $(id -u) -eq 0 ]]; then
        "$@"
    else
        sudo "$@"
    fi
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 \
        -o Dpkg::Use-Pty=0 install -y --no-install-recommends "$@"
}

# need PACKAGE...: installs those that are missing; apt is not touched when none is.
need() {
    local package missing=() log
    for package in "$@"; do
        have "$package" || missing+=("$package")
    done
    [[ ${#missing[@]} -eq 0 ]] && return 0
    command -v apt-get >/dev/null || die "missing: ${missing[*]}; there is no apt-get here, please install them."
    [[ $(id -u) -eq 0 ]] || command -v sudo >/dev/null ||
        die "missing: ${missing[*]}; run this as root, install sudo, or run: apt-get install ${missing[*]}"

    say "Installing ${missing[*]} ..."
    log=$(mktemp)
    # A fresh machine has no package lists, an old one has stale ones: both are cured by an update.
    if ! apt_install "${missing[@]}" >"$log" 2>&1; then
        say "  bringing the package lists up to date ..."
        if ! { as_root apt-get -qq update && apt_install "${missing[@]}"; } >"$log" 2>&1; then
            cat "$log" >&2
            rm -f "$log"
            die "apt-get could not install: ${missing[*]}"
        fi
    fi
    rm -f "$log"
    for package in "${missing[@]}"; do
        have "$package" || die "$package is installed, but what we need of it is not found."
    done
}

# follow_build LABEL: reads Ninja's lines, shows how far it is, keeps the rest for the case of a
# failure. On a terminal one line is rewritten; elsewhere a line comes every tenth of the way.
follow_build() {
    local label=$1 line done_count total shown=-1
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]]; then
            done_count=${BASH_REMATCH[1]} total=${BASH_REMATCH[2]}
            if [[ -t 2 ]]; then
                printf '\r%s: %d of %d steps \e[K' "$label" "$done_count" "$total" >&2
                shown=$total
            elif ((total > 3 && done_count * 10 / total > shown)); then
                shown=$((done_count * 10 / total))
                say "  $label: $done_count of $total steps"
            fi
        else
            printf '%s\n' "$line"
        fi
    done
    [[ -t 2 ]] && ((shown > 0)) && printf '\r\e[K' >&2
    return 0
}

# build LABEL DIRECTORY TARGET...: brings targets up to date; silent when there is nothing to do.
build() {
    local label=$1 directory=$2 log
    shift 2
    log=$(mktemp)
    # Ninja writes what it does and what compilers say to one stream, in whole lines per step.
    if ! NINJA_STATUS="[%f/%t] " ninja -C "$directory" "$@" 2>&1 |
        follow_build "$label" >"$log"; then
        grep -v '^ninja: Entering directory' "$log" >&2 || true
        rm -f "$log"
        die "the build failed; the messages above say why."
    fi
    rm -f "$log"
}

# configure PRESET DIRECTORY OPTION...: runs CMake, quietly unless it fails.
configure() {
    local preset=$1 directory=$2 log
    shift 2
    # A build folder that came here by copying or moving the project belongs to another place.
    if [[ -f $directory/CMakeCache.txt ]] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$project_dir" "$directory/CMakeCache.txt"; then
        rm -rf "$directory"
    fi
    log=$(mktemp)
    if ! (cd "$project_dir" && cmake --preset "$preset" "$@") >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        die "CMake could not configure the project; the messages above say why."
    fi
    rm -f "$log"
}

# Two calls at once must not build in the same folder: the second waits.
lock_build() {
    mkdir -p "$project_dir/build"
    exec 9>"$project_dir/build/.lock"
    if ! flock -n 9; then
        say "Waiting for another build in this folder ..."
        flock 9
    fi
}
unlock_build() { exec 9>&-; }
