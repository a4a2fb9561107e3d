#!/usr/bin/env bash
# The calendar under HTTP load on both engines, beside nginx serving the same month page as a
# static file, in one run on this machine.
#
#   bench/http_load.sh [BUILD_DIR] [SECONDS] [PADDINGS...]
#
# Defaults: build 10 1000 100000 1000000. For SQLite and then for a throwaway PostgreSQL
# (scripts/with_postgres.sh), it seeds a busy November 2026 (bench/seed_busy_site: five
# accounts of one group who all see the whole group, 151 items), starts `tidewell serve` on
# 127.0.0.1 with the clock fixed in that month, signs in as the group's administrator through
# the login form, and runs wrk (2 threads, 16 connections) against the month, week, day and
# time views and an item-add post; then the month view again on databases whose Items table
# is padded with the given numbers of rows in other years. nginx serves the month page's bytes
# as a file in the same run. Every server is started here and stopped at the end; nothing
# else is contacted. Prints one table row per measurement: req/s, p50, p99, req/s as a share
# of nginx's, the statements each request ran on the database (the mean of the server's
# access lines for the measured requests), and the processor time the server spent on each
# request (its user and system time over the run, from /proc, divided by the requests; a
# PostgreSQL server's own processes are not counted). wrk shares the machine's processors
# with the server, so the latencies move with everything else running; the processor time
# per request moves far less and is the figure to compare when changing the code.
#
# Two switches narrow a run, e.g. to look at one request while changing the code:
#   TIDEWELL_HTTP_LOAD_ENGINES  the engines to measure, of "SQLite PostgreSQL" (both unless set)
#   TIDEWELL_HTTP_LOAD_ONLY     the measurements to make, of "nginx month week day time item-add
#                               padded" (all unless set); without nginx the share reads "-"
#   TIDEWELL_HTTP_LOAD_ENGINES=PostgreSQL TIDEWELL_HTTP_LOAD_ONLY=item-add bench/http_load.sh
set -euo pipefail
cd "$(dirname "$0")/.."
source bench/served_site.sh
build=${1:-build}
seconds=${2:-10}
shift $(($# > 2 ? 2 : $#))
paddings=("$@")
((${#paddings[@]})) || paddings=(1000 100000 1000000)

for tool in wrk nginx python3 curl; do
  if ! command -v "$tool" >/dev/null && ! [[ -x /usr/sbin/$tool ]]; then
    sudo=()
    [[ $(id -u) -eq 0 ]] || sudo=(sudo)
    "${sudo[@]}" apt-get install -y -qq wrk nginx-light python3 curl >/dev/null
    break
  fi
done
nginx_bin=$(command -v nginx || echo /usr/sbin/nginx)

# The PostgreSQL half runs inside a throwaway server: the script calls itself there.
if [[ -z ${TIDEWELL_HTTP_LOAD_ENGINE:-} ]]; then
  ninja -C "$build" tidewell seed_busy_site >/dev/null
  printf '| engine | request | req/s | p50 | p99 | share of nginx | statements/request | server µs/request |\n'
  printf '|---|---|---|---|---|---|---|---|\n'
  engines=${TIDEWELL_HTTP_LOAD_ENGINES:-SQLite PostgreSQL}
  if [[ " $engines " == *" SQLite "* ]]; then
    TIDEWELL_HTTP_LOAD_ENGINE=SQLite "$0" "$build" "$seconds" "${paddings[@]}"
  fi
  if [[ " $engines " == *" PostgreSQL "* ]]; then
    TIDEWELL_HTTP_LOAD_ENGINE=PostgreSQL scripts/with_postgres.sh "$0" "$build" "$seconds" \
      "${paddings[@]}"
  fi
  exit 0
fi
engine=$TIDEWELL_HTTP_LOAD_ENGINE
only=" ${TIDEWELL_HTTP_LOAD_ONLY:-nginx month week day time item-add padded} "
wanted() { [[ $only == *" $1 "* ]]; }

work=$(mktemp -d)
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

# A connection string for a new, empty database named $1.
new_database() {
  if [[ $engine == SQLite ]]; then
    echo "Provider=SQLite;Data Source=$work/$1.db"
  else
    psql "$(pg_uri)" -qc "CREATE DATABASE $1" >/dev/null
    sed "s/dbname=[^;]*/dbname=$1/" <<<"$TIDEWELL_TEST_POSTGRES"
  fi
}
# The throwaway server's address as psql takes it.
pg_uri() {
  local host port
  host=$(sed 's/.*host=\([^;]*\).*/\1/' <<<"$TIDEWELL_TEST_POSTGRES")
  port=$(sed 's/.*port=\([^;]*\).*/\1/' <<<"$TIDEWELL_TEST_POSTGRES")
  echo "host=$host port=$port dbname=tidewell user=tidewell"
}

# Starts tidewell on the database $1 (its files named $2); sets server_port and server_pid.
server_port=
server_pid=
start_server() {
  local name=$2 dialect=0
  [[ $engine == PostgreSQL ]] && dialect=1
  printf 'Visible = True\nImagePath = images/\nConnectionString = %s\nDataServer = %s\n' \
    "$1" "$dialect" >"$work/$name.conf"
  TIDEWELL_NOW="2026-11-21 09:30:00" "$build/tidewell" serve --config "$work/$name.conf" \
    --listen 127.0.0.1:0 >/dev/null 2>"$work/$name.log" &
  pids+=($!)
  server_pid=$!
  server_port=$(served_port "$work/$name.log" 10)
}

# "req/s p50 p99 requests" from wrk's --latency output in $1 (latencies in ms).
wrk_figures() {
  python3 - "$1" <<'EOF'
import re, sys
text = open(sys.argv[1]).read()
def ms(label):
    m = re.search(r"\s" + label + r"\s+([\d.]+)(us|ms|s)\b", text)
    value, unit = float(m.group(1)), m.group(2)
    return value / 1000 if unit == "us" else value * 1000 if unit == "s" else value
rate = float(re.search(r"Requests/sec:\s+([\d.]+)", text).group(1))
requests = int(re.search(r"(\d+) requests in", text).group(1))
print(f"{rate:.0f} {ms('50%'):.2f} {ms('99%'):.2f} {requests}")
EOF
}

# The mean of the statements= counts in the log $1 after its first $2 lines, or "-".
statements_after() {
  tail -n +"$(($2 + 1))" "$1" | python3 -c '
import re, sys
counts = [int(m.group(1)) for m in re.finditer(r" statements=(\d+) ", sys.stdin.read())]
print(f"{sum(counts) / len(counts):.2f}" if counts else "-")'
}

# The user and system time process $1 has used so far, in clock ticks.
cpu_ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }

# wrk against $2 on port $1 (a lua script $3 for posts); prints "req/s p50 p99 statements
# cpu": the statements read from the server's log $4, and the processor time in microseconds
# that the server process $5 spent on each request; each "-" when not given.
measure() {
  local args=(-t2 -c16 -d"${seconds}s" --latency) log=${4:-} pid=${5:-} lines=0 ticks=0
  [[ -n ${3:-} ]] && args+=(-s "$3")
  [[ -n $log ]] && lines=$(wc -l <"$log")
  [[ -n $pid ]] && ticks=$(cpu_ticks "$pid")
  wrk "${args[@]}" "http://127.0.0.1:$1/$2" >"$work/wrk.out"
  [[ -n $pid ]] && ticks=$(($(cpu_ticks "$pid") - ticks))
  sleep 0.2  # the last answers' lines
  local rate p50 p99 requests cpu=-
  read -r rate p50 p99 requests <<<"$(wrk_figures "$work/wrk.out")"
  [[ -n $pid ]] && cpu=$(python3 -c "print(f'{$ticks / $(getconf CLK_TCK) / $requests * 1e6:.0f}')")
  echo "$rate $p50 $p99 $([[ -n $log ]] && statements_after "$log" "$lines" || echo -) $cpu"
}

nginx_rate=
row() {  # request, "req/s p50 p99 statements cpu"
  read -r rate p50 p99 statements cpu <<<"$2"
  local share="-"
  [[ $1 == nginx* ]] && share="1"
  [[ -n $nginx_rate ]] && share=$(python3 -c "print(f'{$rate / $nginx_rate:.3f}')")
  printf '| %s | %s | %s | %s ms | %s ms | %s | %s | %s |\n' "$engine" "$1" "$rate" "$p50" \
    "$p99" "$share" "$statements" "$cpu"
}

seed() { "$build/bench/seed_busy_site" "$1" "$2" >/dev/null; }

# The busy month, signed in as boss.
database=$(new_database busy)
seed "$database" 0
start_server "$database" busy
port=$server_port
pid=$server_pid
curl -s -o "$work/month.html" --data "username=boss&password=pw&login=y" "http://127.0.0.1:$port/"
month=$(link_titled "$work/month.html" "Display MonthView")
[[ -n $month ]] || { echo "could not sign in:" >&2; head -c 2000 "$work/month.html" >&2; exit 1; }
curl -s -o "$work/month.html" "http://127.0.0.1:$port/$month"

# nginx serves the very same bytes.
if wanted nginx; then
mkdir -p "$work/www" "$work/nginx"
cp "$work/month.html" "$work/www/month.html"
nginx_port=$((20000 + RANDOM % 20000))
cat >"$work/nginx.conf" <<EOF
daemon off;
worker_processes 2;
pid $work/nginx/nginx.pid;
error_log $work/nginx/error.log;
$([[ $(id -u) -eq 0 ]] && echo "user root;")
events { worker_connections 1024; }
http {
  access_log off;
  sendfile on;
  client_body_temp_path $work/nginx; proxy_temp_path $work/nginx; fastcgi_temp_path $work/nginx;
  uwsgi_temp_path $work/nginx; scgi_temp_path $work/nginx;
  server { listen 127.0.0.1:$nginx_port; root $work/www; }
}
EOF
"$nginx_bin" -c "$work/nginx.conf" -p "$work/nginx" >/dev/null 2>&1 &
pids+=($!)
sleep 0.5
nginx_figures=$(measure "$nginx_port" month.html)
row "nginx, the month page as a file" "$nginx_figures"
nginx_rate=${nginx_figures%% *}
fi

log=$work/busy.log
wanted month && row "month view" "$(measure "$port" "$month" "" "$log" "$pid")"
for view in WeekView DayView TimeView; do
  view_name=${view%View}
  wanted "${view_name,,}" || continue
  row "${view/View/ view}" \
    "$(measure "$port" "$(link_titled "$work/month.html" "Display $view")" "" "$log" "$pid")"
done

# An item added through the item form, as its post sends it.
if wanted item-add; then
add=$(link_titled "$work/month.html" "Add New Item")
curl -s -o "$work/form.html" "http://127.0.0.1:$port/$add"
action=$(python3 -c "import re,sys; print(re.search(r'<form action=([^ >]+)', open(sys.argv[1]).read()).group(1))" "$work/form.html")
cat >"$work/post.lua" <<'EOF'
wrk.method = "POST"
wrk.headers["Content-Type"] = "application/x-www-form-urlencoded"
wrk.body = "datestamp=11%2F25%2F2026&timestamp=10&timetext=30&heading=Load&description=&submit=Add&action=a"
EOF
row "item-add post" "$(measure "$port" "$action" "$work/post.lua" "$log" "$pid")"
fi

# The month view over larger tables: the same month, more rows in other years.
wanted padded || paddings=()
for padding in "${paddings[@]}"; do
  database=$(new_database "padded_$padding")
  seed "$database" "$padding"
  start_server "$database" "padded_$padding"
  padded_port=$server_port
  padded_pid=$server_pid
  curl -s -o "$work/padded.html" --data "username=boss&password=pw&login=y" \
    "http://127.0.0.1:$padded_port/"
  padded_month=$(link_titled "$work/padded.html" "Display MonthView")
  row "month view, Items + $padding rows" \
    "$(measure "$padded_port" "$padded_month" "" "$work/padded_$padding.log" "$padded_pid")"
done
