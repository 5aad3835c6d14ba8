#!/bin/sh
# A Galera cluster of MariaDB servers for tests, each node in a folder of its own, on sockets in these folders and on ports of
# the loopback address for the nodes themselves.
#
#   cluster.sh start FOLDER         makes three nodes, prints the connection string of each
#   cluster.sh kill FOLDER NODE     ends a node, 1 to 3, by SIGKILL
#   cluster.sh join FOLDER NODE     starts a node that was ended, and waits until it has the others' rows
#   cluster.sh stop FOLDER          stops all nodes and deletes the folder
#
# Run as root it uses the account "mysql", because the server refuses to run as root.
set -eu

command=$1
folder=$2
node=${3:-}
provider=/usr/lib/galera/libgalera_smm.so

as_user() {
    if [ "$(id -u)" -eq 0 ]; then
        setpriv --reuid=mysql --regid=mysql --clear-groups "$@"
    else
        "$@"
    fi
}

client() { # NODE [ARGUMENT...]
    at=$1
    shift
    mariadb --no-defaults --socket="$folder/$at/socket" -u root "$@"
}

# The ports of a node: for the group, for missed changes, and for the copy of the whole database.
port() { # NODE KIND
    echo $(($(cat "$folder/port") + $1 * 3 + $2))
}

# Starts the server of a node and waits until it takes part in the cluster.
run() { # NODE [ARGUMENT...]
    which=$1
    shift
    peers="127.0.0.1:$(port 1 0),127.0.0.1:$(port 2 0),127.0.0.1:$(port 3 0)"
    # The redirections are of a shell of its own, so that nothing keeps the caller's output open.
    (
        exec >>"$folder/$which/log" 2>&1 </dev/null
        as_user mariadbd --no-defaults --datadir="$folder/$which/data" --socket="$folder/$which/socket" \
            --pid-file="$folder/$which/pid" --skip-networking --log-bin=off --binlog-format=ROW \
            --innodb-autoinc-lock-mode=2 --innodb-flush-log-at-trx-commit=0 --innodb-buffer-pool-size=64M \
            --wsrep-on=ON --wsrep-provider="$provider" --wsrep-cluster-name=clinic --wsrep-node-name="node$which" \
            --wsrep-cluster-address="gcomm://$peers" --wsrep-node-address="127.0.0.1:$(port "$which" 0)" \
            --wsrep-provider-options="gmcast.listen_addr=tcp://127.0.0.1:$(port "$which" 0);ist.recv_addr=127.0.0.1:$(port "$which" 1);gcache.size=32M" \
            --wsrep-sst-method=rsync --wsrep-sst-receive-address="127.0.0.1:$(port "$which" 2)" "$@"
    ) &
    waits=0
    until [ "$(client "$which" -Nse "SHOW STATUS LIKE 'wsrep_local_state_comment'" 2>/dev/null)" = "wsrep_local_state_comment	Synced" ]; do
        waits=$((waits + 1))
        [ $waits -lt 600 ] || {
            cat "$folder/$which/log" >&2
            exit 1
        }
        sleep 0.1
    done
}

kill_node() { # NODE
    server=$(cat "$folder/$1/pid" 2>/dev/null) || return 0
    kill -9 "$server" 2>/dev/null || true
    while kill -0 "$server" 2>/dev/null; do sleep 0.1; done
    rm -f "$folder/$1/pid"
}

stop() {
    for number in 1 2 3; do kill_node $number; done
    rm -rf "$folder"
}

start() {
    stop
    mkdir -p "$folder"
    # Nine ports behind each other, most likely unused ones, other than those that the system gives out by itself.
    echo $((12000 + $(id -u) % 10 + ($$ % 2000) * 9)) >"$folder/port"
    for number in 1 2 3; do
        mkdir "$folder/$number"
        [ "$(id -u)" -ne 0 ] || chown mysql "$folder/$number"
        as_user mariadb-install-db --no-defaults --auth-root-authentication-method=normal --skip-test-db \
            --datadir="$folder/$number/data" >"$folder/install.log" 2>&1 || {
            cat "$folder/install.log" >&2
            exit 1
        }
    done
    run 1 --wsrep-new-cluster
    client 1 -e "CREATE USER oxclass@localhost; GRANT ALL ON *.* TO oxclass@localhost WITH GRANT OPTION;
        CREATE DATABASE clinic CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin"
    for number in 2 3; do run $number; done
    for number in 1 2 3; do
        echo "Provider=MSDASQL;Driver={MariaDB Unicode};Socket=$folder/$number/socket;Database=clinic;User ID=oxclass"
    done
}

case $command in
    start) start ;;
    kill) kill_node "$node" ;;
    join) run "$node" ;;
    stop) stop ;;
    *) echo "usage: $0 start|kill|join|stop FOLDER [NODE]" >&2; exit 2 ;;
esac
