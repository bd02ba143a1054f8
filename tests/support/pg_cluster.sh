#!/bin/bash
# A throwaway PostgreSQL cluster for the tests: `start DIR` makes one in DIR (Unix socket in
# DIR, no TCP, trust authentication, superuser "ostrakan") and starts it; `stop DIR` stops it
# and removes DIR; `halt DIR` stops it keeping its data and `resume DIR` starts it again (the
# fault tests' outage). Run as root, the cluster belongs to the unprivileged user nobody.
set -euo pipefail
bin=${OSTRAKAN_PG_BIN:-/usr/lib/postgresql/15/bin}
command=${1:?start or stop}
dir=${2:?folder}

as_owner() {
  if [ "$(id -u)" = 0 ]; then
    setpriv --reuid=nobody --regid=nogroup --clear-groups "$@"
  else
    "$@"
  fi
}

case $command in
  start)
    if [ -f "$dir/data/postmaster.pid" ]; then "$0" stop "$dir"; fi
    rm -rf "$dir"
    mkdir -p "$dir"
    if [ "$(id -u)" = 0 ]; then chown nobody:nogroup "$dir"; fi
    as_owner "$bin/initdb" -D "$dir/data" -U ostrakan -A trust -E UTF8 --locale=C -N >"$dir/initdb.log"
    # Durability does not matter for a cluster that lives for one test run.
    as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -s \
      -o "-c listen_addresses='' -c unix_socket_directories='$dir' -c fsync=off" \
      -o "-c synchronous_commit=off -c full_page_writes=off -c max_connections=200" start
    ;;
  halt)
    as_owner "$bin/pg_ctl" -D "$dir/data" -m fast -w -s stop
    ;;
  resume)
    as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -s \
      -o "-c listen_addresses='' -c unix_socket_directories='$dir' -c fsync=off" \
      -o "-c synchronous_commit=off -c full_page_writes=off -c max_connections=200" start
    ;;
  stop)
    if [ -f "$dir/data/postmaster.pid" ]; then
      as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate -w -s stop || true
    fi
    rm -rf "$dir"
    ;;
  *)
    echo "usage: pg_cluster.sh start|stop|halt|resume DIR" >&2
    exit 2
    ;;
esac
