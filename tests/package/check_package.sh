#!/usr/bin/env bash
# check_package.sh BUILD_DIR CONSUMER_DIR README EXAMPLE_DIR COMPILER FLAGS
# Installs the build into a prefix of its own and moves it (an installation must not know its place),
# then lets a consumer find it with find_package and with pkg-config, build and run; the program in
# the README and an example, copied out of the tree, are built and run too.
set -euo pipefail
build_dir=$1 consumer=$2 readme=$3 example=$4 compiler=$5 flags=$6

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }

cmake --install "$build_dir" --prefix "$work/first" >"$work/install.log" || { cat "$work/install.log"; fail "install"; }
mv "$work/first" "$work/prefix"
prefix="$work/prefix"
lib_dir=$(dirname "$(find "$prefix" -name 'libnequar_algebra.so')")

echo "--- find_package"
CXX=$compiler CXXFLAGS=$flags cmake -S "$consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$work/cmake"
[[ $("$work/cmake/consumer") == solved ]] || fail "the consumer found by find_package"

echo "--- pkg-config"
export PKG_CONFIG_PATH="$lib_dir/pkgconfig"
read -ra found <<<"$(pkg-config --cflags --libs nequar_algebra)"
# shellcheck disable=SC2086  # flags are several words
"$compiler" -std=c++20 $flags "$consumer/main.cpp" -o "$work/consumer" "${found[@]}"
[[ $(LD_LIBRARY_PATH="$lib_dir" "$work/consumer") == solved ]] || fail "the consumer found by pkg-config"

echo "--- the program in the README"
awk '/^```cpp/ { inside = 1; next } /^```/ { inside = 0 } inside' "$readme" >"$work/readme.cpp"
# shellcheck disable=SC2086
"$compiler" -std=c++20 $flags "$work/readme.cpp" -o "$work/readme" "${found[@]}"
printed=$(LD_LIBRARY_PATH="$lib_dir" "$work/readme")
[[ -n $printed && $(<"$readme") == *"prints \`$printed\`."* ]] ||
    fail "the program in the README does not print what stands there, but $printed"

echo "--- an example, alone"
cp -r "$example" "$work/example"
CXX=$compiler CXXFLAGS=$flags cmake -S "$work/example" -B "$work/example_build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$work/example_build"
"$work/example_build/camera_pose" "$work/example/points_noisy.txt" || fail "the example"

echo "--- the installed program"
if [[ -x $prefix/bin/nequar ]]; then
    "$prefix/bin/nequar" --version
fi

echo "--- what the library needs and shows"
needed=$(objdump -p "$lib_dir/libnequar_algebra.so" | awk '/NEEDED/ { print $2 }')
echo $needed
for name in $needed; do
    case $name in
        libstdc++.so.* | libm.so.* | libgcc_s.so.* | libc.so.* | ld-linux*) ;;
        libasan.so.* | libubsan.so.*) [[ $flags == *-fsanitize* ]] || fail "the library needs $name" ;;
        *) fail "the library needs $name, which is not the standard library" ;;
    esac
done
shown=$(nm -DC --defined-only "$lib_dir/libnequar_algebra.so" | grep 'nequar::kernel::\|::algorithm::' || true)
[[ -z $shown ]] || fail "inner symbols are visible: $shown"
[[ $(readlink "$lib_dir/libnequar_algebra.so") == libnequar_algebra.so.* ]] || fail "no versioned name"
echo good
