#!/bin/sh
# A PostgreSQL server for tests, in a folder of its own, on a socket in this folder, without a network port.
#
#   postgresql.sh start FOLDER    makes the server and the database "clinic", which tests copy; prints the connection string
#   postgresql.sh stop FOLDER     stops it and deletes the folder
#
# Run as root it uses the account "postgres".
. "$(dirname "$0")/server.sh"
account=postgres

programs=$(find /usr/lib/postgresql -mindepth 2 -maxdepth 2 -name bin | sort -V | tail -1)

stop_server() {
    [ ! -d "$folder/data" ] || as_user "$programs/pg_ctl" -D "$folder/data" -m immediate stop >/dev/null 2>&1 || true
}

start() {
    cd "$folder"
    as_user "$programs/initdb" -D "$folder/data" -U oxclass -A trust --no-sync --encoding=UTF8 --locale=C >initdb.log 2>&1 || {
        cat initdb.log >&2
        exit 1
    }
    # The account "clerk" needs a password; the others don't.
    { echo 'local all clerk scram-sha-256'; cat "$folder/data/pg_hba.conf"; } >"$folder/hba"
    cat "$folder/hba" >"$folder/data/pg_hba.conf"
    # Nothing of it needs to survive a crash of the machine.
    as_user "$programs/pg_ctl" -D "$folder/data" -w -s -l "$folder/log" start \
        -o "-c listen_addresses='' -k '$folder' -c fsync=off -c full_page_writes=off -c synchronous_commit=off -c autovacuum=off -c wal_level=minimal -c max_wal_senders=0 -c max_connections=200" || {
        cat "$folder/log" >&2
        exit 1
    }
    cd - >/dev/null
    psql -h "$folder" -U oxclass -qc 'CREATE DATABASE clinic' postgres
    psql -h "$folder" -U oxclass -v ON_ERROR_STOP=1 -1 -q -f "$schema/postgresql.sql" clinic
    psql -h "$folder" -U oxclass -qc "CREATE ROLE clerk LOGIN PASSWORD 'right;word'" postgres
    echo "Provider=PostgreSQL;Server=$folder;User ID=oxclass"
}

run
