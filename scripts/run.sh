#!/usr/bin/env bash
# Sets up the machine, builds the library and its tool, and runs the tool's built-in example.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DVELMOR_BUILD_TESTS=OFF >/dev/null
cmake --build build/release --parallel "$(nproc)" --target velmor >/dev/null
build/release/tools/velmor tour
