#!/usr/bin/env bash
# check_debs.sh BUILD_DIR CONSUMER_DIR COMPILER SOVERSION
# Builds the Debian packages, unpacks them as one system, and lets a consumer find the library there
# with find_package and with pkg-config, build and run; the program runs from there too. Status 77:
# this system has no dpkg-deb.
set -euo pipefail
build_dir=$1 consumer=$2 compiler=$3 soversion=$4
command -v dpkg-deb >/dev/null || exit 77

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

cpack --config "$build_dir/CPackConfig.cmake" -B "$work/packages" >"$work/log" 2>&1 || { cat "$work/log"; fail "cpack"; }
packages=("libnequar-algebra$soversion" libnequar-algebra-dev nequar)
root="$work/root"
for package in "${packages[@]}"; do
    deb=$(find "$work/packages" -maxdepth 1 -name "${package}_*.deb")
    [[ -f $deb ]] || fail "there is no package $package: $(ls "$work/packages")"
    [[ $(dpkg-deb -f "$deb" Package) == "$package" ]] || fail "the package in $deb is not $package"
    depends=$(dpkg-deb -f "$deb" Depends)
    echo "$package depends on $depends"
    [[ $package == libnequar-algebra$soversion || $depends == *"libnequar-algebra$soversion (= "* ]] ||
        fail "$package does not depend on the library"
    dpkg-deb -x "$deb" "$work/$package"
    dpkg-deb -x "$deb" "$root"
done

# has PACKAGE PATTERN...: files of the package, and of no other one.
has() {
    local package=$1 pattern other
    shift
    for pattern in "$@"; do
        [[ -n $(find "$work/$package" -path "$work/$package/$pattern") ]] || fail "$package lacks $pattern"
        for other in "${packages[@]}"; do
            [[ $other == "$package" || -z $(find "$work/$other" -path "$work/$other/$pattern") ]] ||
                fail "$other has $pattern"
        done
    done
}
has "${packages[0]}" "usr/lib/libnequar_algebra.so.$soversion"
has "${packages[1]}" usr/lib/libnequar_algebra.so usr/include/nequar_algebra/nequar_algebra.h \
    usr/lib/cmake/nequar_algebra/nequar_algebraConfig.cmake usr/lib/pkgconfig/nequar_algebra.pc \
    usr/share/doc/nequar_algebra/examples/camera_pose/main.cpp
has "${packages[2]}" usr/bin/nequar usr/share/man/man1/nequar.1.gz \
    usr/share/bash-completion/completions/nequar
owned=$(dpkg-deb -c "$work/packages/${packages[0]}"_*.deb | awk '$2 != "root/root" { print }')
[[ -z $owned ]] || fail "files that root does not own: $owned"

echo "--- find_package"
CXX=$compiler cmake -S "$consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$root/usr"
cmake --build "$work/cmake"
[[ $("$work/cmake/consumer") == solved ]] || fail "the consumer found by find_package"

echo "--- pkg-config"
export PKG_CONFIG_SYSROOT_DIR=$root PKG_CONFIG_LIBDIR=$root/usr/lib/pkgconfig
read -ra found <<<"$(pkg-config --cflags --libs nequar_algebra)"
echo "${found[@]}"
"$compiler" -std=c++20 "$consumer/main.cpp" -o "$work/consumer" "${found[@]}"
[[ $(LD_LIBRARY_PATH="$root/usr/lib" "$work/consumer") == solved ]] || fail "the consumer found by pkg-config"

echo "--- the program"
"$root/usr/bin/nequar" --version
echo good
