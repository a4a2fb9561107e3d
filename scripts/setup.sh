#!/usr/bin/env bash
# Installs every Debian package Tidewell needs to build, test and run, then builds it into
# build/ (the server is build/tidewell). Safe to run any number of times.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake ninja-build pkg-config
  libcpp-httplib-dev libsqlite3-dev libpq-dev libssl-dev
  libgtest-dev libgmock-dev libbenchmark-dev libgoogle-perftools-dev
  postgresql-15 postgresql-contrib
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo=()
  [[ $(id -u) -eq 0 ]] || sudo=(sudo)
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}"
fi

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
ninja -C build
