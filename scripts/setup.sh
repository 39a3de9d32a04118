#!/usr/bin/env bash
# Installs what the build, tests, benchmarks and fuzzers need, from Debian packages.
# Quick when everything is there: apt is only touched for missing packages.
set -euo pipefail

packages=(cmake g++ make pkg-config libboost1.81-dev libboost-filesystem1.81-dev libxml2-dev
  zlib1g-dev libisal-dev dpkg-dev googletest libgtest-dev libbenchmark-dev libssl-dev clang libclang-rt-14-dev)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
echo "setup: installing ${missing[*]}"
$sudo apt-get -o DPkg::Lock::Timeout=600 update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get -o DPkg::Lock::Timeout=600 install -y -qq --no-install-recommends "${missing[@]}" </dev/null
