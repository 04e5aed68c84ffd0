#!/usr/bin/env bash
# Installs the build into a scratch prefix, builds the HTTP device example
# (examples/device-http, libcurl) against it, and runs it against the
# installed `zuvo serve` on a free loopback port: first a whole session with
# encryption on, then one server per kind of scenario rule, checking what the
# device reports. Each server is stopped by its process id.
# Usage: check_device_http.sh BUILD_DIR WORK_DIR EXAMPLE_SOURCE_DIR CXX
set -uo pipefail
build=$1 work=$2 example=$3 cxx=$4

rm -rf "$work"
mkdir -p "$work"
server_pid=""
trap '[ -n "$server_pid" ] && kill -KILL "$server_pid" 2>/dev/null' EXIT
die() { echo "FAIL: $*"; exit 1; }
# shellcheck source=tests/install/common.sh
source "$(dirname "$0")/common.sh"

install_into "$build" "$work/prefix"
cmake -S "$example" -B "$work/device" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log" || { cat "$work/configure.log"; die configure; }
cmake --build "$work/device" >"$work/build.log" || { cat "$work/build.log"; die build; }
zuvo=$work/prefix/bin/zuvo
device=$work/device/device-http
"$zuvo" keygen >"$work/key"

# serve SCENARIO_JSON: starts the installed server (with the scenario when
# given) and waits at most 10 s for its address line; sets $url. The output
# file is emptied first, as it still holds the previous server's address until
# the new one's redirection truncates it.
serve() {
    local args=(--listen 127.0.0.1:0 --key-file "$work/key" --log "$work/serve.log")
    if [ -n "$1" ]; then
        printf '{"rules": [%s]}' "$1" >"$work/scenario.json"
        args+=(--scenario "$work/scenario.json")
    fi
    : >"$work/serve.out"
    "$zuvo" serve "${args[@]}" >"$work/serve.out" 2>"$work/serve.err" &
    server_pid=$!
    for _ in $(seq 100); do
        url=$(sed -n 's/^zuvo serve: listening on //p' "$work/serve.out")
        [ -n "$url" ] && return 0
        sleep 0.1
    done
    cat "$work/serve.err"
    die "server did not start"
}

# stop: SIGTERM, then at most 10 s for the server to end.
stop() {
    kill -TERM "$server_pid"
    for _ in $(seq 100); do
        kill -0 "$server_pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$server_pid" 2>/dev/null && die "server ignored SIGTERM"
    wait "$server_pid" || die "server exit $? on SIGTERM"
    server_pid=""
}

failures=0
# scenario rule | exit code of the device | line the device prints
while IFS='|' read -r rule want line; do
    [ -z "$want" ] && continue
    serve "$rule"
    "$device" "$url" --key-file "$work/key" --timeout 3 >"$work/device.out" 2>&1
    got=$?
    stop
    if [ "$got" != "$want" ] || ! grep -qF -- "$line" "$work/device.out"; then
        echo "FAIL: rule '$rule': device exit $got (wanted $want), output lacks '$line':"
        cat "$work/device.out"
        failures=$((failures + 1))
    fi
done <<'EOF_CASES'
|0|play data: accepted at server time
|0|registration: user subscriber-1042 (Living room player), client ticket of
{"message": "preregister", "refuse": {"code": 1011, "userText": "Try again later"}}|1|pre-registration failed: refused by the server: code 1011, "Try again later"
{"message": "authorization", "truncate": 300}|1|authorization failed: the response is malformed or cut off (
{"message": "authorization", "wrongKey": true}|1|authorization failed: a payload of the response could not be opened (in '
{"message": "register", "reject": true}|1|registration failed: the response was rejected by RegSubParser (element 
{"message": "authorization", "downloadables": 3000}|0|authorization: title 70143836, 3000 video downloadables
{"message": "ping", "delay": 4000}|1|ping failed: transport error: Timeout was reached
{"message": "ping", "delay": 300}|0|session complete
{"message": "playdata", "status": 503}|1|play data failed: HTTP 503: scenario: HTTP 503 for playdata call 1
EOF_CASES
[ "$failures" -eq 0 ] || exit 1
echo "device-http: a whole session and every scenario kind against zuvo serve"
