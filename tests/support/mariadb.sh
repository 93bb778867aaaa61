#!/bin/bash
# A throwaway MariaDB server on loopback for the end-to-end tests.
#   mariadb.sh start DIR PORT  starts a server listening on 127.0.0.1:PORT with the user "dms"
#                              (password "dmspw", allowed every database) and writes the ODBC
#                              connection string of its database "dms" to DIR/conn
#   mariadb.sh stop DIR        stops it and removes its data
# The server runs as a dealership's does: table names without regard to case, and ANSI SQL
# (|| joins texts, double quotes name columns). As root it runs as the "mysql" user.
set -euo pipefail

usage() { echo "usage: $0 start DIR PORT | stop DIR" >&2; exit 2; }

command -v mariadbd >/dev/null || { echo "$0: mariadbd not found (package mariadb-server)" >&2; exit 1; }

stop_server() {
  local dir=$1
  [[ -f "$dir/server" ]] || return 0
  local server pid
  server=$(cat "$dir/server")
  if [[ -f "$server/pid" ]]; then
    pid=$(cat "$server/pid")
    kill -TERM "$pid" 2>/dev/null || true
    for _ in $(seq 300); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
  fi
  rm -rf "$server" "$dir/server"
}

start_server() {
  local dir=$1 port=$2
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  stop_server "$dir"
  rm -f "$dir/conn"
  # A short private folder: the socket's path must stay short.
  local server user
  server=$(mktemp -d /tmp/vantorel-mdb.XXXXXX)
  echo "$server" >"$dir/server"
  user=$(id -un)
  if [[ $(id -u) -eq 0 ]]; then
    user=mysql
    chown mysql:mysql "$server"
  fi
  local options=(--no-defaults --user="$user" --datadir="$server/data" --lower-case-table-names=1)
  mariadb-install-db "${options[@]}" --auth-root-authentication-method=normal --skip-test-db \
    >"$dir/install.log" 2>&1 || { cat "$dir/install.log" >&2; exit 1; }
  setsid mariadbd "${options[@]}" --bind-address=127.0.0.1 --port="$port" \
    --socket="$server/sock" --pid-file="$server/pid" --log-error="$server/err.log" \
    --skip-name-resolve --character-set-server=utf8mb4 --collation-server=utf8mb4_unicode_ci \
    --sql-mode=ANSI --innodb-flush-log-at-trx-commit=0 </dev/null >/dev/null 2>&1 &
  for _ in $(seq 300); do
    mariadb-admin --no-defaults -uroot --socket="$server/sock" ping >/dev/null 2>&1 && break
    sleep 0.1
  done
  mariadb --no-defaults -uroot --socket="$server/sock" -e \
    "create database dms; create user dms@'127.0.0.1' identified by 'dmspw';
     grant all on *.* to dms@'127.0.0.1';" || { cat "$server/err.log" >&2; exit 1; }
  echo "Driver={MariaDB Unicode};Server=127.0.0.1;Port=$port;Database=dms;UID=dms;PWD=dmspw" \
    >"$dir/conn"
  echo "MariaDB $(mariadbd --version | awk '{print $3}') on 127.0.0.1:$port, data in $server"
}

case "${1:-}" in
  start) [[ $# -eq 3 ]] || usage; start_server "$2" "$3" ;;
  stop) [[ $# -eq 2 ]] || usage; stop_server "$(cd "$2" 2>/dev/null && pwd || echo "$2")" ;;
  *) usage ;;
esac
