#!/bin/sh
# A PostgreSQL server with a replica for tests, each in a folder of its own, on sockets in these folders.
#
#   replica.sh start FOLDER      makes both, and the database "clinic"; prints a connection string that names both
#   replica.sh kill FOLDER       ends the primary server by SIGKILL
#   replica.sh promote FOLDER    lets the replica accept writing
#   replica.sh stop FOLDER       stops both and deletes the folder
#
# The primary reports a transaction as committed when the replica has it. Run as root it uses the account "postgres",
# because the server refuses to run as root.
set -eu

command=$1
folder=$2

as_user() {
    if [ "$(id -u)" -eq 0 ]; then
        setpriv --reuid=postgres --regid=postgres --clear-groups "$@"
    else
        "$@"
    fi
}

programs=$(find /usr/lib/postgresql -mindepth 2 -maxdepth 2 -name bin | sort -V | tail -1)

run() { # SERVER [OPTIONS]
    as_user "$programs/pg_ctl" -D "$folder/$1/data" -w -s -l "$folder/$1/log" start \
        -o "-c listen_addresses='' -k '$folder/$1' -c fsync=off -c autovacuum=off ${2:-}" || {
        cat "$folder/$1/log" >&2
        exit 1
    }
}

ask() { # STATEMENT
    psql -h "$folder/primary" -U oxclass -Atqc "$1" postgres
}

kill_primary() {
    server=$(head -1 "$folder/primary/data/postmaster.pid")
    # The server's processes too, so that none of them ends its work.
    kill -9 "$server" $(pgrep -P "$server")
    while kill -0 "$server" 2>/dev/null; do sleep 0.1; done
}

stop() {
    for server in primary replica; do
        [ ! -d "$folder/$server/data" ] || as_user "$programs/pg_ctl" -D "$folder/$server/data" -m immediate stop >/dev/null 2>&1 || true
    done
    rm -rf "$folder"
}

start() {
    stop
    for server in primary replica; do
        mkdir -p "$folder/$server"
        [ "$(id -u)" -ne 0 ] || chown postgres "$folder/$server"
    done
    cd "$folder"
    as_user "$programs/initdb" -D "$folder/primary/data" -U oxclass -A trust --no-sync --encoding=UTF8 --locale=C >initdb.log 2>&1 || {
        cat initdb.log >&2
        exit 1
    }
    run primary
    as_user "$programs/pg_basebackup" -h "$folder/primary" -U oxclass -D "$folder/replica/data" -R -X stream -c fast \
        -d "host=$folder/primary user=oxclass application_name=replica" >basebackup.log 2>&1 || {
        cat basebackup.log >&2
        exit 1
    }
    run replica
    ask "ALTER SYSTEM SET synchronous_standby_names = 'replica'"
    ask "SELECT pg_reload_conf()" >/dev/null
    waits=0
    until [ "$(ask "SELECT count(*) FROM pg_stat_replication WHERE sync_state = 'sync'")" = 1 ]; do
        waits=$((waits + 1))
        [ $waits -lt 300 ] || {
            cat "$folder/replica/log" >&2
            exit 1
        }
        sleep 0.1
    done
    ask "CREATE DATABASE clinic"
    echo "Provider=PostgreSQL;Server=$folder/primary,$folder/replica;Database=clinic;User ID=oxclass"
}

case $command in
    start) start ;;
    kill) kill_primary ;;
    promote) as_user "$programs/pg_ctl" -D "$folder/replica/data" -w -s promote ;;
    stop) stop ;;
    *) echo "usage: $0 start|kill|promote|stop FOLDER" >&2; exit 2 ;;
esac
