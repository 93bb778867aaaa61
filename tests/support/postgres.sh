#!/bin/bash
# A throwaway PostgreSQL cluster on loopback for the data tests.
#   postgres.sh start DIR PORT  starts a cluster listening on 127.0.0.1:PORT with the database
#                               "dms" owned by the user "dms" (password "dmspw") and writes the
#                               ODBC connection string to DIR/conn
#   postgres.sh stop DIR        stops it and removes its data
# As root the server runs as the "postgres" user; as anyone else it runs as that user.
set -euo pipefail

usage() { echo "usage: $0 start DIR PORT | stop DIR" >&2; exit 2; }

BIN=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
[[ -n "$BIN" && -x "$BIN/initdb" ]] || { echo "$0: PostgreSQL server binaries not found" >&2; exit 1; }

# Runs a command as the user that owns the cluster.
as_owner() {
  if [[ $(id -u) -eq 0 ]]; then
    su postgres -s /bin/sh -c "$(printf '%q ' "$@")"
  else
    "$@"
  fi
}

stop_cluster() {
  local dir=$1
  [[ -f "$dir/cluster" ]] || return 0
  local cluster
  cluster=$(cat "$dir/cluster")
  if [[ -f "$cluster/data/postmaster.pid" ]]; then
    as_owner "$BIN/pg_ctl" -D "$cluster/data" -m fast -w -t 30 stop >/dev/null || true
  fi
  rm -rf "$cluster" "$dir/cluster"
}

start_cluster() {
  local dir=$1 port=$2
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  stop_cluster "$dir"
  rm -f "$dir/conn"

  # The server's files live in DIR when its user can reach it, in a private temporary folder
  # otherwise (a build tree under a home folder the postgres user may not enter).
  local cluster="$dir/cluster.d"
  rm -rf "$cluster"
  mkdir -p "$cluster"
  if [[ $(id -u) -eq 0 ]]; then
    chown postgres:postgres "$cluster"
    if ! su postgres -s /bin/sh -c "test -w $(printf '%q' "$cluster")"; then
      rmdir "$cluster"
      cluster=$(mktemp -d /tmp/vantorel-pg.XXXXXX)
      chown postgres:postgres "$cluster"
    fi
  fi
  chmod 700 "$cluster"
  echo "$cluster" >"$dir/cluster"

  local admin_password
  admin_password=$(od -An -N12 -tx1 /dev/urandom | tr -d ' \n')
  (umask 077 && echo "$admin_password" >"$cluster/pw")
  [[ $(id -u) -eq 0 ]] && chown postgres:postgres "$cluster/pw"

  as_owner "$BIN/initdb" -D "$cluster/data" -U postgres -A scram-sha-256 --pwfile="$cluster/pw" \
    -E UTF8 --locale=C.UTF-8 --no-sync >"$dir/initdb.log" 2>&1 ||
    { cat "$dir/initdb.log" >&2; exit 1; }
  rm -f "$cluster/pw"
  as_owner "$BIN/pg_ctl" -D "$cluster/data" -l "$cluster/server.log" -w -t 30 \
    -o "-c listen_addresses=127.0.0.1 -p $port -k $cluster -c fsync=off" start >/dev/null ||
    { cat "$cluster/server.log" >&2; exit 1; }

  PGPASSWORD=$admin_password psql -h 127.0.0.1 -p "$port" -U postgres -d postgres -qX \
    -v ON_ERROR_STOP=1 \
    -c "create role dms login password 'dmspw'" \
    -c "create database dms owner dms encoding 'UTF8'"

  echo "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=$port;Database=dms;UID=dms;PWD=dmspw" \
    >"$dir/conn"
  echo "PostgreSQL $(basename "$(dirname "$BIN")") on 127.0.0.1:$port, cluster in $cluster"
}

case "${1:-}" in
  start) [[ $# -eq 3 ]] || usage; start_cluster "$2" "$3" ;;
  stop) [[ $# -eq 2 ]] || usage; stop_cluster "$(cd "$2" 2>/dev/null && pwd || echo "$2")" ;;
  *) usage ;;
esac
