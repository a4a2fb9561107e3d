#!/usr/bin/env bash
# Installs every Debian package Tidewell needs to build, test and run, and the npm packages of
# the browser tests, then builds it into build/ (the server is build/tidewell). Safe to run any
# number of times.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake ninja-build pkg-config
  libcpp-httplib-dev libsqlite3-dev libpq-dev libssl-dev libsodium-dev
  libgtest-dev libgmock-dev libbenchmark-dev libgoogle-perftools-dev
  postgresql-15 postgresql-contrib
  libboost-dev
  libical-dev tzdata
  chromium
  systemd
  nginx-light
  prometheus python3 python3-icalendar
)
# Node.js and npm drive Chromium in the browser tests. A machine that already has both keeps
# its own (a newer Node.js package may itself provide npm and refuse Debian's).
command -v node >/dev/null || packages+=(nodejs)
command -v npm >/dev/null || packages+=(npm)

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

# playwright-core, which drives Chromium in the browser tests, needs Node.js 20 or later;
# Debian 12's own package is 18. The server and the other tests do not care.
if ! node -e 'process.exit(Number(process.versions.node.split(".")[0]) >= 20 ? 0 : 1)'; then
  echo "setup: warning: Node.js $(node --version) is older than 20; the browser test" \
    "(browser_walk) will fail until a newer Node.js is installed" >&2
fi

# The browser tests' npm packages, exactly as the lock file names them; installed anew only
# when the lock file has changed since the last install.
(
  cd tests/browser
  if ! cmp -s package-lock.json node_modules/.tidewell-installed-lock 2>/dev/null; then
    echo "setup: installing the browser tests' npm packages"
    npm ci --no-audit --no-fund --loglevel=error
    cp package-lock.json node_modules/.tidewell-installed-lock
  fi
)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
ninja -C build
