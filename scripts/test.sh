#!/usr/bin/env bash
# Builds with warnings as errors and runs every test, then again under AddressSanitizer and
# UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
jobs=$(nproc)

cmake -S . -B build/check -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMOR_WERROR=ON \
  -DVELMOR_BUILD_BENCH=ON
cmake --build build/check --parallel "$jobs"
ctest --test-dir build/check --output-on-failure --parallel "$jobs"

cmake -S . -B build/sanitize -DCMAKE_BUILD_TYPE=Debug -DVELMOR_WERROR=ON \
  -DCMAKE_CXX_COMPILER=clang++ -DVELMOR_SANITIZE=address,undefined -DVELMOR_BUILD_FUZZ=ON
cmake --build build/sanitize --parallel "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build/sanitize --output-on-failure --parallel "$jobs"

# The signal and mutex tests again under ThreadSanitizer (the configuration and runtime programs).
cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=Debug -DVELMOR_WERROR=ON -DVELMOR_BUILD_TOOLS=OFF \
  -DCMAKE_CXX_COMPILER=clang++ -DVELMOR_SANITIZE=thread
cmake --build build/tsan --parallel "$jobs" --target velmor_config_tests velmor_runtime_tests
TSAN_OPTIONS=halt_on_error=1 build/tsan/tests/velmor_config_tests
TSAN_OPTIONS=halt_on_error=1 build/tsan/tests/runtime/velmor_runtime_tests

# The installed package: a consumer built with the CMake package and with pkg-config, and the
# Debian package installed and run.
bash scripts/check_package.sh

# The Windows DLL and the tests, cross-built with MinGW-w64 and run under Wine.
bash scripts/test_windows.sh
