#!/bin/sh
# A MariaDB server for tests, in a folder of its own, on a socket in this folder, without a network port.
#
#   mariadb.sh start FOLDER    makes the server and the database "clinic", which tests copy; prints the connection string
#   mariadb.sh stop FOLDER     stops it and deletes the folder
#
# Run as root it uses the account "mysql".
. "$(dirname "$0")/server.sh"
account=mysql

stop_server() {
    [ -f "$folder/pid" ] || return 0
    server=$(cat "$folder/pid")
    kill -9 "$server" 2>/dev/null || true
    while kill -0 "$server" 2>/dev/null; do sleep 0.1; done
}

start() {
    as_user mariadb-install-db --no-defaults --auth-root-authentication-method=normal --skip-test-db \
        --datadir="$folder/data" >"$folder/install.log" 2>&1 || {
        cat "$folder/install.log" >&2
        exit 1
    }
    # Nothing of it needs to survive a crash of the machine. Tables share one file, because a truncated table is made anew.
    # The redirections are of a shell of its own, so that nothing keeps the caller's output open.
    (
        exec >"$folder/log" 2>&1 </dev/null
        as_user mariadbd --no-defaults --datadir="$folder/data" --socket="$folder/socket" --pid-file="$folder/pid" \
            --skip-networking --skip-log-bin --innodb-flush-log-at-trx-commit=0 --skip-innodb-doublewrite \
            --innodb-flush-method=nosync --sync-frm=0 --innodb-file-per-table=0 --innodb-fast-shutdown=2 \
            --max-connections=200
    ) &
    waits=0
    until mariadb-admin --no-defaults --socket="$folder/socket" -u root --silent ping >/dev/null 2>&1; do
        waits=$((waits + 1))
        [ $waits -lt 300 ] || {
            cat "$folder/log" >&2
            exit 1
        }
        sleep 0.1
    done
    client="mariadb --no-defaults --socket=$folder/socket -u root"
    $client -e "CREATE USER oxclass@localhost; GRANT ALL ON *.* TO oxclass@localhost WITH GRANT OPTION;
        CREATE DATABASE clinic CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin"
    $client clinic <"$schema/mariadb.sql"
    $client -e "CREATE USER clerk@localhost IDENTIFIED BY 'right;word'"
    echo "Provider=MSDASQL;Driver={MariaDB Unicode};Socket=$folder/socket;User ID=oxclass"
}

run
