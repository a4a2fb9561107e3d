#!/usr/bin/env bash
# Instructions the server runs for one request of each calendar view, counted by callgrind:
# the same figure on a busy machine as on an idle one, to compare two versions of the code
# where timings move with everything else the machine does.
#
#   bench/request_instructions.sh [BUILD_DIR] [REQUESTS]
#
# Defaults: build 20. It seeds the busy November of bench/http_load.sh (bench/seed_busy_site:
# 151 items of five accounts of one group, on SQLite), starts `tidewell serve` on 127.0.0.1
# under valgrind's callgrind with the clock fixed in that month, signs in as the group's
# administrator, and for each of the month, week, day and time views asks three times (so that
# statements are prepared and caches filled), then zeroes the counters, asks REQUESTS times
# with curl, one request after another, and has callgrind write what the process ran since.
# Prints each view's instructions per request, in every thread of the server (the event loop's
# reading and writing included; the kernel's work is not counted). The server is started here
# and stopped at the end; nothing else is contacted. A run takes well under a minute.
set -euo pipefail
cd "$(dirname "$0")/.."
source bench/served_site.sh
build=${1:-build}
requests=${2:-20}

if ! command -v valgrind >/dev/null || ! command -v curl >/dev/null; then
  sudo=()
  [[ $(id -u) -eq 0 ]] || sudo=(sudo)
  "${sudo[@]}" apt-get install -y -qq valgrind curl python3 >/dev/null
fi
ninja -C "$build" tidewell seed_busy_site >/dev/null

work=$(mktemp -d)
server_pid=
cleanup() {
  [[ -n $server_pid ]] && kill -INT "$server_pid" 2>/dev/null && wait "$server_pid" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

"$build/bench/seed_busy_site" "Provider=SQLite;Data Source=$work/busy.db" 0 >/dev/null
printf 'Visible = True\nImagePath = images/\nConnectionString = %s\nDataServer = 0\n' \
  "Provider=SQLite;Data Source=$work/busy.db" >"$work/busy.conf"
TIDEWELL_NOW="2026-11-21 09:30:00" valgrind --tool=callgrind --quiet \
  --callgrind-out-file="$work/callgrind.out" "$build/tidewell" serve --config "$work/busy.conf" \
  --listen 127.0.0.1:0 >/dev/null 2>"$work/server.log" &
server_pid=$!
port=$(served_port "$work/server.log" 60)

curl -s -o "$work/month.html" --data "username=boss&password=pw&login=y" "http://127.0.0.1:$port/"
month=$(link_titled "$work/month.html" "Display MonthView")
[[ -n $month ]] || { echo "could not sign in" >&2; exit 1; }
curl -s -o "$work/month.html" "http://127.0.0.1:$port/$month"

printf '| view | instructions/request | bytes/request |\n|---|---|---|\n'
dump=0
for view in MonthView WeekView DayView TimeView; do
  link=$(link_titled "$work/month.html" "Display $view")
  for _ in 1 2 3; do curl -s -o /dev/null "http://127.0.0.1:$port/$link"; done
  callgrind_control -z "$server_pid" >/dev/null 2>&1
  bytes=0
  for _ in $(seq "$requests"); do
    bytes=$((bytes + $(curl -s -o /dev/null -w '%{size_download}' "http://127.0.0.1:$port/$link")))
  done
  callgrind_control -d "$view" "$server_pid" >/dev/null 2>&1
  dump=$((dump + 1))
  for _ in $(seq 100); do
    grep -qs '^totals:' "$work/callgrind.out.$dump" && break
    sleep 0.1
  done
  summary=$(sed -n 's/^summary: *//p' "$work/callgrind.out.$dump")
  printf '| %s | %s | %s |\n' "${view/View/ view}" \
    "$(python3 -c "print(f'{$summary / $requests / 1e6:.3f}M')")" $((bytes / requests))
done
