# What the scripts of this folder share; they read it with ".". A script sets `account`, under which root runs the server,
# because servers refuse to run as root; it defines `start` and `stop_server`, and calls `run`. It has the variables `folder`
# and `schema`, the folder of the definitions.
set -eu

command=${1:-}
folder=${2:-}
schema=$(dirname "$0")/../../schema

as_user() {
    if [ "$(id -u)" -eq 0 ]; then
        setpriv --reuid="$account" --regid="$account" --clear-groups "$@"
    else
        "$@"
    fi
}

stop() {
    stop_server
    rm -rf "$folder"
}

run() {
    [ -n "$folder" ] || command=
    case $command in
        start)
            stop
            mkdir -p "$folder"
            [ "$(id -u)" -ne 0 ] || chown "$account" "$folder"
            start
            ;;
        stop) stop ;;
        *) echo "usage: $0 start|stop FOLDER" >&2; exit 2 ;;
    esac
}
