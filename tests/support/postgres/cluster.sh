#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# A PostgreSQL server of the tests' own: in a folder, reached through a socket in that folder, by the users "postgres"
# (everything) and "qav" (may create databases).
#
#   cluster.sh start <folder> [setting=value ...]    creates it anew and starts it
#   cluster.sh restart <folder>                      starts it again after it was stopped or has crashed
#   cluster.sh clone <folder> <standby>              creates a standby of it and starts it
#   cluster.sh stop <folder>                         stops it and removes the folder
#   cluster.sh run <folder> <program> [argument ...] runs one of PostgreSQL's programs as the server's user
set -euo pipefail

action=$1 folder=$2
shift 2

programs=$(printf '%s\n' /usr/lib/postgresql/*/bin | sort -V | tail -1)
[ -x "$programs/postgres" ] || programs=$(dirname "$(command -v postgres)")

# The server refuses to run as root.
run() {
  local program=$1
  shift
  if [ "$(id -u)" -eq 0 ]; then
    (cd / && runuser -u postgres -- "$programs/$program" "$@")
  else
    "$programs/$program" "$@"
  fi
}

# Whether any process of the server lives. A killed one that nobody has waited for yet still has its number.
is_alive() {
  local process
  for process in /proc/[0-9]*; do
    [ "$(readlink "$process/cwd" 2>/dev/null)" != "$folder/data" ] || return 0
  done
  return 1
}

stop() {
  if is_alive; then
    run pg_ctl -D "$folder/data" -m immediate -w stop >/dev/null
  fi
}

launch() {
  run pg_ctl -D "$folder/data" -l "$folder/log" -w -t 60 start >/dev/null
}

create() {
  stop
  rm -rf "$folder"
  mkdir -m 700 "$folder"
  [ "$(id -u)" -ne 0 ] || chown postgres "$folder"
}

case $action in
start)
  create
  run initdb -D "$folder/data" -U postgres --auth=trust -E UTF8 --locale=C.UTF-8 --no-sync >/dev/null
  {
    echo "listen_addresses = ''"
    echo "unix_socket_directories = '$folder'"
    echo "max_connections = 200"
    for setting in "$@"; do
      echo "${setting%%=*} = '${setting#*=}'"
    done
  } >>"$folder/data/postgresql.conf"
  launch
  run psql -q -h "$folder" -U postgres -d template1 -c "CREATE ROLE qav LOGIN CREATEDB" -c "CREATE EXTENSION amcheck" \
    -c "GRANT EXECUTE ON FUNCTION bt_index_check(regclass, boolean) TO qav" -c "GRANT CREATE ON SCHEMA public TO qav"
  ;;
restart)
  # The processes of a server that was killed need a moment to notice it.
  for attempt in $(seq 600); do
    is_alive || break
    sleep 0.05
  done
  rm -f "$folder/data/postmaster.pid" "$folder"/.s.PGSQL.*.lock
  launch
  ;;
clone)
  primary=$folder
  folder=$1
  create
  run pg_basebackup -h "$primary" -U postgres -D "$folder/data" -R -X stream --checkpoint=fast --no-sync
  echo "unix_socket_directories = '$folder'" >>"$folder/data/postgresql.conf"
  launch
  ;;
stop)
  stop
  rm -rf "$folder"
  ;;
run)
  run "$@"
  ;;
*)
  echo "unknown action: $action" >&2
  exit 2
  ;;
esac
