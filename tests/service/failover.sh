#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# A PostgreSQL primary with a synchronous standby: while a writer is at work the primary dies and the standby takes its
# place. Nothing that was acknowledged may be lost, nothing may be stored twice.
#
#   failover.sh <cluster.sh> <tst_durability> [failovers]
set -euo pipefail

cluster=$1 program=$2 failovers=${3:-1}
root=$(mktemp -d /tmp/qav-failover-XXXXXX)
chmod 755 "$root"
writer=

clean() {
  [ -z "$writer" ] || kill -9 "$writer" 2>/dev/null || true
  "$cluster" stop "$root/a"
  "$cluster" stop "$root/b"
  rm -rf "$root"
}
trap clean EXIT

# Waits until a command succeeds.
await() {
  local attempt
  for attempt in $(seq 600); do
    "$@" && return
    sleep 0.1
  done
  echo "waited in vain for: $*" >&2
  cat "$root"/*/log "$root/errors" >&2 || true
  exit 1
}

ask() { psql -X -A -t -q -h "$1" -U postgres -c "$2"; }
is_synchronous() { [ "$(ask "$1" "SELECT count(*) FROM pg_stat_replication WHERE sync_state = 'sync'")" = 1 ]; }
has_acknowledged() { [ "$(wc -l <"$root/acknowledged")" -ge "$1" ]; }

# The whole machine goes: the server's process and everything that it has started.
kill_server() {
  local main
  main=$(head -1 "$1/data/postmaster.pid")
  kill -9 "$main" $(pgrep -P "$main")
}

for round in $(seq "$failovers"); do
  "$cluster" start "$root/a" shared_buffers=32MB
  ask "$root/a" "CREATE DATABASE failover OWNER qav"
  "$program" --prepare "postgresql://qav@/failover?host=$root/a"

  "$cluster" clone "$root/a" "$root/b"
  ask "$root/a" "ALTER SYSTEM SET synchronous_standby_names = '*'"
  ask "$root/a" "SELECT pg_reload_conf()" >/dev/null
  await is_synchronous "$root/a"

  both="postgresql://qav@/failover?host=$root/b,$root/a"
  "$program" --write "$both" "run$round" >"$root/acknowledged" 2>"$root/errors" &
  writer=$!
  await has_acknowledged 100
  kill_server "$root/a"
  before=$(wc -l <"$root/acknowledged")
  "$cluster" run "$root/b" pg_ctl -D "$root/b/data" -w promote >/dev/null
  await has_acknowledged $((before + 100))
  kill -9 "$writer"
  wait "$writer" 2>/dev/null || true
  writer=

  echo "$before operations acknowledged by the primary, $(($(wc -l <"$root/acknowledged") - before)) by its successor"
  "$program" --check "$both" "run$round" <"$root/acknowledged"
  "$cluster" stop "$root/a"
  "$cluster" stop "$root/b"
done
