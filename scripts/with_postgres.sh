#!/bin/bash
# Runs a command beside a throwaway PostgreSQL 15 server.
#
#   scripts/with_postgres.sh COMMAND [ARGUMENTS...]
#
# The server lives in a fresh temporary folder, listens only on a Unix socket in that folder
# (no TCP port is opened), and trusts local connections. The command sees its address in
#
#   TIDEWELL_TEST_POSTGRES="Provider=PostgreSQL;host=SOCKET_DIR;port=PORT;dbname=tidewell;user=tidewell"
#
# and the script exits with the command's status. The server is stopped and the folder
# removed however the command ends. PostgreSQL refuses to run as root, so under root the
# server runs as the "postgres" system user (or "nobody" when there is none).
set -euo pipefail

if [[ $# -eq 0 ]]; then
  echo "usage: $0 COMMAND [ARGUMENTS...]" >&2
  exit 2
fi

pg_bin="${TIDEWELL_PG_BIN:-/usr/lib/postgresql/15/bin}"
if [[ ! -x "$pg_bin/initdb" || ! -x "$pg_bin/pg_ctl" ]]; then
  echo "$0: PostgreSQL 15 is not installed ($pg_bin/initdb not found)" >&2
  exit 2
fi

server_user=""
if [[ "$(id -u)" -eq 0 ]]; then
  if id -u postgres >/dev/null 2>&1; then server_user=postgres; else server_user=nobody; fi
fi

# Runs a PostgreSQL program as the server's user.
as_server() {
  if [[ -n "$server_user" ]]; then
    runuser -u "$server_user" -- "$@"
  else
    "$@"
  fi
}

work_dir="$(mktemp -d "${TMPDIR:-/tmp}/tidewell-pg.XXXXXX")"
data_dir="$work_dir/data"
socket_dir="$work_dir/socket"
log_file="$work_dir/server.log"

stop_server() {
  local status=$?
  if [[ -f "$data_dir/postmaster.pid" ]]; then
    as_server "$pg_bin/pg_ctl" -D "$data_dir" -m immediate -w stop >/dev/null 2>&1 || true
  fi
  rm -rf "$work_dir"
  exit "$status"
}
# Set at once, so that a failure from here on leaves no folder behind.
trap stop_server EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

mkdir "$socket_dir"
# The socket folder must be reachable by the tests (the invoking user) and by the server.
chmod 755 "$work_dir" "$socket_dir"
if [[ -n "$server_user" ]]; then chown "$server_user" "$work_dir" "$socket_dir"; fi

# The port only names the socket file; a private folder keeps it from meeting other servers.
port=$((20000 + RANDOM % 20000))

locale=C
if locale -a 2>/dev/null | grep -qix 'c.utf-\?8'; then locale=C.UTF-8; fi

as_server "$pg_bin/initdb" -D "$data_dir" -U tidewell --auth=trust -E UTF8 \
  --locale="$locale" --no-sync >"$work_dir/initdb.log" 2>&1 || {
  echo "$0: initdb failed:" >&2
  cat "$work_dir/initdb.log" >&2
  exit 2
}

if ! as_server "$pg_bin/pg_ctl" -D "$data_dir" -l "$log_file" -w -t 60 \
  -o "-c listen_addresses='' -k '$socket_dir' -p $port -c fsync=off -c synchronous_commit=off -c full_page_writes=off -c max_connections=200" \
  start >/dev/null; then
  echo "$0: the PostgreSQL server did not start:" >&2
  cat "$log_file" >&2 || true
  exit 2
fi

as_server "$pg_bin/createdb" -h "$socket_dir" -p "$port" -U tidewell tidewell

export TIDEWELL_TEST_POSTGRES="Provider=PostgreSQL;host=$socket_dir;port=$port;dbname=tidewell;user=tidewell"

# Not exec: the trap must run after the command to stop the server.
set +e
"$@"
