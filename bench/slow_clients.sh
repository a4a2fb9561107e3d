#!/usr/bin/env bash
# Ordinary requests' latency on a Tidewell server while slow clients hold connections: first
# without them, then with IDLE silent and TRICKLERS one-byte-a-second connections open (kept at
# that number: when the server closes one at its deadline, another takes its place).
#
#   bench/slow_clients.sh [BUILD_DIR] [IDLE] [TRICKLERS] [SECONDS] [CLIENTS]
#
# Defaults: build 500 500 20 4. Starts its own server on 127.0.0.1 with a fresh SQLite
# database and stops it at the end; nothing else is contacted.
set -euo pipefail
cd "$(dirname "$0")/.."
source bench/served_site.sh
build=${1:-build}
idle=${2:-500}
tricklers=${3:-500}
seconds=${4:-20}
clients=${5:-4}
ninja -C "$build" tidewell slow_clients_load >/dev/null

folder=$(mktemp -d)
server=
cleanup() {
  [[ -n $server ]] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null || true
  rm -rf "$folder"
}
trap cleanup EXIT
printf 'Visible = True\nImagePath = images/\nConnectionString = Provider=SQLite;Data Source=%s\n' \
  "$folder/calendar.db" >"$folder/site.conf"
"$build/tidewell" serve --config "$folder/site.conf" --listen 127.0.0.1:0 2>"$folder/log" &
server=$!
port=$(served_port "$folder/log" 10)

for path in / /tidewell.css; do
  echo "== GET $path, no slow clients"
  "$build/bench/slow_clients_load" --port "$port" --idle 0 --tricklers 0 --clients "$clients" \
    --seconds "$seconds" --path "$path"
  echo "== GET $path, with $idle idle and $tricklers trickling connections"
  "$build/bench/slow_clients_load" --port "$port" --idle "$idle" --tricklers "$tricklers" \
    --clients "$clients" --seconds "$seconds" --path "$path"
done
