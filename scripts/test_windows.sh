#!/usr/bin/env bash
# Cross-builds the Windows DLL, its import library, velmor.exe and the tests with MinGW-w64,
# warnings as errors, and runs the tests under Wine.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup_windows.sh
cache=${VELMOR_WINDOWS_CACHE:-$PWD/.cache/windows}
prefix=$cache/prefix
build=build/windows

# pkg-config, which CMake's find modules consult, must see only the Windows libraries.
export PKG_CONFIG_LIBDIR=$prefix/lib/pkgconfig:/usr/x86_64-w64-mingw32/lib/pkgconfig
export PKG_CONFIG_PATH=

nice cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMOR_WERROR=ON \
  -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/x86_64-w64-mingw32.cmake \
  -DCMAKE_PREFIX_PATH="$prefix" -DBoost_INCLUDE_DIR="$cache/boost-include" \
  -DBoost_NO_BOOST_CMAKE=ON -DZLIB_USE_STATIC_LIBS=ON
nice cmake --build "$build" --parallel "$(nproc)"

# The DLL exports the public interface only: no internals, nothing of the static runtimes.
exports=$(x86_64-w64-mingw32-objdump -p "$build/src/velmor_core.dll" |
  sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | awk 'NR > 1 && NF { print $NF }' | c++filt)
if [ -z "$exports" ]; then
  echo "test_windows: velmor_core.dll exports nothing" >&2
  exit 1
fi
special='((vtable|typeinfo|typeinfo name|VTT) for )?'
# Internal classes that public headers export on purpose (bases of public templates).
exported_internal=$(sed -n 's/^class VELMOR_API \([A-Za-z_0-9]*\).*/\1/p' include/velmor2/*.hpp |
  paste -sd '|' -)
stray=$( (grep -Ev "^${special}velmor2::" <<<"$exports"
  grep -E "^${special}velmor2::_internal::" <<<"$exports" |
    grep -Ev "^${special}velmor2::_internal::(${exported_internal})(::|$)") || true)
if [ -n "$stray" ]; then
  echo "test_windows: velmor_core.dll exports more than the public interface:" >&2
  echo "$stray" >&2
  exit 1
fi
echo "test_windows: velmor_core.dll exports $(wc -l <<<"$exports") public symbols"

# A prefix of our own, made once: Wine then never touches the user's ~/.wine, and later runs
# skip its first-start setup.
export WINEPREFIX=$cache/wineprefix
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
if [ ! -e "$WINEPREFIX/system.reg" ]; then
  echo "test_windows: creating the Wine prefix"
  nice "$wine" wineboot --init >/dev/null 2>&1
  wineserver -w
fi
# The tests of the public interface load velmor_core.dll, as users' programs do.
WINEPATH=$(winepath -w "$build/src" 2>/dev/null)
export WINEPATH
status=0
nice ctest --test-dir "$build" --output-on-failure --parallel "$(nproc)" || status=$?

# The DLL is also loaded by name by the tool, which finds an exported function in it.
dll=$(winepath -w "$build/src/velmor_core.dll" 2>/dev/null)
if ! "$wine" "$build/tools/velmor.exe" lib "$dll" _ZN7velmor216get_fq_host_nameB5cxx11Ev; then
  echo "test_windows: velmor_core.dll does not load under Wine" >&2
  status=1
fi
wineserver -k 2>/dev/null || true
exit "$status"
