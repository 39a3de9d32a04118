#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds a consumer against it with the CMake
# package and with pkg-config; then builds the Debian package, installs it and runs the tool.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/package
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

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
DEBIAN_FRONTEND=noninteractive apt-get install -o DPkg::Lock::Timeout=600 -y -qq --reinstall "./$deb" </dev/null >/dev/null
velmor --help >/dev/null
bash tests/tool/velmor_e2e.sh "$(command -v velmor)"
echo "package: $(basename "$deb") installs and runs"
