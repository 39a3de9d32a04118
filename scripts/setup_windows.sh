#!/usr/bin/env bash
# Prepares the Windows cross-build: installs the MinGW-w64 toolchain, Wine and the Debian
# packages the dependencies come from, then cross-builds GoogleTest and a static libxml2 into
# the cache folder. A dependency already in the cache is not built again.
#
# Cache folder: $VELMOR_WINDOWS_CACHE, by default .cache/windows in the source tree. It holds
#   prefix/          the cross-built GoogleTest and libxml2 (headers, static libraries, CMake files)
#   boost-include/   a folder whose only entry is the `boost` header directory
#   apt/             the source-package index used to fetch libxml2's Debian sources
#   src/, build/     sources and build trees of the dependencies
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
cache=${VELMOR_WINDOWS_CACHE:-$root/.cache/windows}
toolchain=$root/cmake/toolchains/x86_64-w64-mingw32.cmake
prefix=$cache/prefix
mkdir -p "$cache"

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi

packages=(cmake make dpkg-dev xz-utils g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64
  googletest libboost1.81-dev)
missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup_windows: installing ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
    -o DPkg::Lock::Timeout=600 "${missing[@]}" </dev/null
fi

# Only the boost directory goes on the cross include path: the rest of /usr/include belongs
# to the build machine and must never be seen by the Windows compiler.
mkdir -p "$cache/boost-include"
ln -sfn /usr/include/boost "$cache/boost-include/boost"

# Builds and installs one dependency unless the cache already holds it built with the same
# arguments.
build_dependency() { # name source-dir cmake-arguments...
  local name=$1 source=$2
  shift 2
  rm -rf "$cache/build/$name"
  nice cmake -S "$source" -B "$cache/build/$name" -G "Unix Makefiles" \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "$@" >"$cache/build-$name.log"
  nice cmake --build "$cache/build/$name" --parallel "$(nproc)" >>"$cache/build-$name.log"
  cmake --install "$cache/build/$name" >>"$cache/build-$name.log"
  echo "$*" >"$prefix/.$name-built"
}

is_built() { # name cmake-arguments...
  local name=$1
  shift
  [ "$(cat "$prefix/.$name-built" 2>/dev/null)" = "$*" ]
}

googletest_options=(-Dgtest_force_shared_crt=ON)
if ! is_built googletest "${googletest_options[@]}"; then
  echo "setup_windows: building GoogleTest for Windows"
  build_dependency googletest /usr/src/googletest "${googletest_options[@]}"
fi

# libxml2 comes from Debian's source package. The source entries are derived from the
# machine's own apt configuration (same archives, same keys) and kept in the cache with their
# own index, so the system's apt state is left as it is.
fetch_libxml2_source() {
  local apt=$cache/apt
  rm -rf "$apt"
  mkdir -p "$apt/sources.list.d" "$apt/lists/partial" "$apt/cache/archives/partial"
  : >"$apt/sources.list"
  local file
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    if [ -f "$file" ]; then
      sed -n 's/^[[:space:]]*deb[[:space:]]/deb-src /p' "$file" >>"$apt/sources.list"
    fi
  done
  for file in /etc/apt/sources.list.d/*.sources; do
    [ -f "$file" ] || continue
    awk 'BEGIN { RS = ""; ORS = "\n\n" }
      /(^|\n)Types:[^\n]*[[:space:]]deb([[:space:]]|$)/ {
        sub(/(^|\n)Types:[^\n]*/, "\nTypes: deb-src"); sub(/^\n/, ""); print }' \
      "$file" >"$apt/sources.list.d/$(basename "$file")"
  done
  local options=(-o Dir::Etc::SourceList="$apt/sources.list"
    -o Dir::Etc::SourceParts="$apt/sources.list.d" -o Dir::State::Lists="$apt/lists"
    -o Dir::Cache="$apt/cache" -o APT::Sandbox::User=root)
  # A third-party archive without sources may fail its index; Debian's is the one needed.
  apt-get "${options[@]}" update -qq || true
  rm -rf "$cache/src/libxml2"
  mkdir -p "$cache/src/libxml2"
  (cd "$cache/src/libxml2" && apt-get "${options[@]}" source -qq libxml2 >/dev/null)
}

# Only the parser, the tree, the serializer, XPath and thread safety are used; DTD validation,
# SAX1 and the push parser stay because parsing and other libxml2 entry points build on them.
libxml2_options=()
for feature in C14N CATALOG DEBUG DOCB FTP HTML HTTP ICONV ICU LEGACY LZMA MEM_DEBUG MODULES \
  PATTERN PROGRAMS PYTHON READER REGEXPS RUN_DEBUG SCHEMAS SCHEMATRON TESTS WRITER XINCLUDE XPTR \
  ZLIB; do
  libxml2_options+=("-DLIBXML2_WITH_$feature=OFF")
done
# libxml2 marks its functions for export unless LIBXML_STATIC is defined while it is compiled
# (its static build defines it only for its users); without it velmor_core.dll would export
# the whole of libxml2.
libxml2_options+=(-DCMAKE_C_FLAGS=-DLIBXML_STATIC)
if ! is_built libxml2 "${libxml2_options[@]}"; then
  echo "setup_windows: fetching libxml2's Debian source package"
  fetch_libxml2_source
  libxml2_source=$(find "$cache/src/libxml2" -mindepth 1 -maxdepth 1 -type d -name 'libxml2-*' | head -n 1)
  echo "setup_windows: building libxml2 for Windows from $(basename "$libxml2_source")"
  build_dependency libxml2 "$libxml2_source" "${libxml2_options[@]}"
fi
