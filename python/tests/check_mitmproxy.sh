#!/usr/bin/env bash
# mitmdump as a reverse proxy in front of `zuvo serve`, with the zuvo content
# view loaded: a device session sent through it with curl must show up in
# mitmdump's flow output as decoded fields, payloads opened with the key.
# Everything runs on free 127.0.0.1 ports and is stopped by its process id.
# Usage: check_mitmproxy.sh ZUVO_BINARY PYTHON_PACKAGE_ROOT
set -euo pipefail
ZUVO=$1
export PYTHONPATH=$2${PYTHONPATH:+:$PYTHONPATH}
python=/usr/bin/python3
scratch=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
    rm -rf "$scratch"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; tail -n 40 "$scratch/mitm.out" >&2 || true; exit 1; }

"$ZUVO" keygen >"$scratch/key"
: >"$scratch/serve.out"
"$ZUVO" serve --listen 127.0.0.1:0 --key-file "$scratch/key" >"$scratch/serve.out" \
    2>"$scratch/serve.err" &
pids+=($!)
url=""
for _ in $(seq 100); do
    url=$(sed -n 's/^zuvo serve: listening on \(http:.*\)$/\1/p' "$scratch/serve.out")
    [ -n "$url" ] && break
    sleep 0.1
done
[ -n "$url" ] || fail "zuvo serve did not start: $(cat "$scratch/serve.err")"

addon=$($python -c 'import zuvo.mitmproxy as m; print(m.__file__)')
port=$($python -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
mitmdump --mode "reverse:${url%/}" --listen-host 127.0.0.1 --listen-port "$port" \
    --set confdir="$scratch/mitm" -s "$addon" --set zuvo_key="$scratch/key" --flow-detail 3 \
    >"$scratch/mitm.out" 2>&1 &
mitm=$!
pids+=($mitm)
proxy=http://127.0.0.1:$port/
for _ in $(seq 150); do
    grep -q "listening at" "$scratch/mitm.out" && break
    kill -0 "$mitm" 2>/dev/null || fail "mitmdump ended at its start"
    sleep 0.1
done
grep -q "listening at" "$scratch/mitm.out" || fail "mitmdump did not start listening"

# post MESSAGE [zuvo build options]: sends the request through the proxy;
# the answer is left in $scratch/MESSAGE.answer.
post() {
    local message=$1
    shift
    "$ZUVO" build "$message" --key-file "$scratch/key" "$@" >"$scratch/$message.xml"
    curl -sS --max-time 10 --fail -o "$scratch/$message.answer" --data-binary @"$scratch/$message.xml" \
        -H 'Content-Type: text/xml' "$proxy" || fail "$message through the proxy"
}
post ping --set softwareVersion=4.2.1
post prereg
code=$("$ZUVO" parse prereg "$scratch/prereg.answer" --key-file "$scratch/key" |
    $python -c 'import json, sys; print(json.load(sys.stdin)["regCode"])')
post register --set regCode="$code" --rc rc-through-proxy

# mitmdump prints a flow once it is complete; give it a moment, then stop it.
for _ in $(seq 50); do
    [ "$(grep -c '"request": "register"' "$scratch/mitm.out")" -ge 1 ] &&
        grep -q '"userDescription"' "$scratch/mitm.out" && break
    sleep 0.1
done
kill -TERM "$mitm"
for _ in $(seq 50); do kill -0 "$mitm" 2>/dev/null || break; sleep 0.1; done

out=$scratch/mitm.out
grep -q '"softwareVersion": "4.2.1"' "$out" || fail "the ping request's fields are not shown"
grep -q "\"regCode\": \"$code\"" "$out" || fail "the pre-registration answer is not decoded"
grep -q '"rc": "rc-through-proxy"' "$out" || fail "the registration payload is not opened"
grep -q '"userDescription": "Living room player"' "$out" || fail "the registration answer is not decoded"
grep -q 'encrypted="true">' "$out" && fail "a raw encrypted payload is shown instead of its fields"
echo "mitmproxy content view: decoded requests and answers through mitmdump"
