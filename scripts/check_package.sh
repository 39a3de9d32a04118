#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds a consumer against it with the CMake
# package and with pkg-config; then builds the Debian package, unpacks it into a scratch folder
# (the machine's own system is left alone) and runs the tool from there.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/package
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
# The end-to-end test also runs the unpacked tool as an ordinary user, who must reach its library.
chmod 755 "$prefix"

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DVELMOR_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --parallel "$(nproc)" >/dev/null
cmake --install "$build" --prefix "$prefix" >/dev/null

cmake -S examples/consumer -B "$build/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$build/consumer" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$build/consumer/velmor_consumer"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046
g++ -std=c++17 examples/consumer/main.cpp -o "$build/consumer_pc" $(pkg-config --cflags --libs velmor_core)
LD_LIBRARY_PATH="$prefix/lib" "$build/consumer_pc"

(cd "$build" && cpack -G DEB >/dev/null)
deb=$(ls "$build"/velmor-core_*.deb | head -n 1)
unpacked=$prefix/unpacked
dpkg-deb -x "$deb" "$unpacked"
# The tool finds the library of its own tree, with no search path given.
"$unpacked/usr/bin/velmor" --help >/dev/null
bash tests/tool/velmor_e2e.sh "$unpacked/usr/bin/velmor"
echo "package: $(basename "$deb") unpacks and runs"
