#!/usr/bin/env bash
# zuvo serve over loopback, driven with curl: the address line, answers and
# refusals by status, a scenario's error status and refusal, the log lines
# and the HAR file written on SIGTERM, a clean end on SIGINT, and the errors
# that stop it at the start. Every server runs on a free 127.0.0.1 port and
# is stopped by its process id.
# Usage: serve.sh ZUVO_BINARY EXAMPLES_DIR
ZUVO=$1
examples=$2
source "$(dirname "$0")/common.sh"

server_pid=""
trap '[ -n "$server_pid" ] && kill -KILL "$server_pid" 2>/dev/null; rm -rf "$scratch"' EXIT

# start_server ARGS...: starts zuvo serve on a free port; sets $url once the
# address line is printed (at most 10 s), or fails. The output file is emptied
# before the start: the server's own redirection truncates it only after the
# fork, and until then it holds the previous server's address.
start_server() {
    : >"$scratch/serve.out"
    "$ZUVO" serve --listen 127.0.0.1:0 "$@" >"$scratch/serve.out" 2>"$scratch/serve.err" &
    server_pid=$!
    url=""
    for _ in $(seq 100); do
        url=$(sed -n 's/^zuvo serve: listening on \(http:.*\)$/\1/p' "$scratch/serve.out")
        [ -n "$url" ] && return 0
        kill -0 "$server_pid" 2>/dev/null || break
        sleep 0.1
    done
    fail "server did not start: $(cat "$scratch/serve.err")"
    return 1
}

# stop_server SIGNAL [TENTHS]: sends SIGNAL and waits (at most TENTHS tenths
# of a second, 10 s by default) for the exit; leaves its code in $code.
stop_server() {
    kill -"$1" "$server_pid"
    for _ in $(seq "${2:-100}"); do
        kill -0 "$server_pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$server_pid" 2>/dev/null && fail "server ignored SIG$1"
    wait "$server_pid"
    code=$?
    server_pid=""
}

# json_true FILTER FILE: the jq filter holds for the JSON file.
json_true() { jq -e "$1" "$2" >/dev/null; }

# post BODY_FILE [URL]: POSTs the file; $status and $body hold the answer.
post() {
    body=$(curl -sS --max-time 10 -o - -w '\n%{http_code}' --data-binary @"$1" "${2:-$url}")
    status=${body##*$'\n'}
    body=${body%$'\n'*}
}

"$ZUVO" keygen >"$scratch/key"
key=(--key-file "$scratch/key")
"$ZUVO" build ping "${key[@]}" --set clientTime=7 >"$scratch/ping.xml"
"$ZUVO" build prereg "${key[@]}" >"$scratch/prereg.xml"
printf 'hello, server' >"$scratch/hello"
head -c 5000 /dev/zero >"$scratch/big"
cat >"$scratch/scenario.json" <<'EOF_JSON'
{"rules": [
  {"message": "ping", "call": 2, "status": 503},
  {"message": "preregister", "refuse": {"code": 1011, "userText": "Try again later"}}
]}
EOF_JSON

# A session: answers by status, then the log and the HAR file on SIGTERM.
if start_server "${key[@]}" --max-body 4096 --scenario "$scratch/scenario.json" \
    --log "$scratch/log" --har "$scratch/session.har"; then
    check "url is loopback: $url" grep -q '^http://127\.0\.0\.1:[0-9]*/$' <<<"$url"
    # what | body file | URL suffix | status | text in the body
    while IFS='|' read -r what file suffix want text; do
        [ -z "$what" ] && continue
        file=${file// /} suffix=${suffix// /} want=${want// /}
        post "$scratch/$file" "$url$suffix"
        check "$what: status $status, wanted $want" [ "$status" = "$want" ]
        [ -n "$text" ] && contains "$what" "$body" "$text"
    done <<'EOF_CASES'
ping answered           |ping.xml  | |200|<zuvo:result method="ping"/>
second ping: scenario   |ping.xml  | |503|scenario: HTTP 503 for ping call 2
third ping answered     |ping.xml  | |200|<zuvo:result method="ping"/>
not a request           |hello     | |400|not well-formed XML
over the size limit     |big       | |413|
another path            |ping.xml  |x|404|
refused pre-registration|prereg.xml| |200|<zuvo:success>false</zuvo:success>
EOF_CASES
    check "GET gets 405" [ "$(curl -s -o /dev/null -w '%{http_code}' "$url")" = 405 ]
    # The device's parser sees the refusal.
    post "$scratch/prereg.xml"
    printf '%s\n' "$body" >"$scratch/refusal.xml"
    expect_ok "refusal parses" parse prereg "$scratch/refusal.xml" "${key[@]}"
    contains "refusal parses" "$out" '"success": false,' '"code": 1011,' '"userText": "Try again later",'

    stop_server TERM
    check "SIGTERM: exit $code" [ "$code" = 0 ]
    contains "summary" "$(cat "$scratch/serve.err")" "zuvo serve: stopped after 9 exchanges"
    log=$(cat "$scratch/log")
    check "one log line per exchange" [ "$(wc -l <"$scratch/log")" = 9 ]
    contains "log" "$log" '"status":503,"message":"ping","call":2,"scenario":"status"' \
        '"status":413,' '"status":400,"message":null' '"clientTime":7' \
        '"response":{"response":"plain"' '"scenario":"refuse"'
    # The error status and the unrouted path have no protocol response.
    run decode --har "$scratch/session.har" "${key[@]}" --format table
    contains "HAR file decodes" "$out" "exchanges: 2 not protocol,"
    contains "HAR file decodes" "$out" ' ping ' 'refused by the server   Try again later'
fi

# Every message over loopback, built as `zuvo build` builds it and read with
# the parser `zuvo parse` uses for its answer, by two devices whose sessions
# interleave step by step. Each echoes the server time of its last answer.
# step: device | message | answer type | --set arguments ($code, $ticket: the device's own)
declare -A time code ticket
send() {
    local dev=$1 message=$2 answer=$3
    shift 3
    local sets=(--set "serverTime=${time[$dev]:-0}")
    for s in "$@"; do sets+=(--set "$s"); done
    case $message in
    *register | authrenew | *provision) sets+=(--rc "rc-$dev") ;;
    esac
    "$ZUVO" build "$message" "${key[@]}" "${sets[@]}" >"$scratch/req-$dev.xml" ||
        { fail "$dev $message: build failed"; return; }
    post "$scratch/req-$dev.xml"
    check "$dev $message: status $status ($body)" [ "$status" = 200 ]
    printf '%s\n' "$body" >"$scratch/answer-$dev.xml"
    run parse "$answer" "$scratch/answer-$dev.xml" "${key[@]}"
    check "$dev $message: parses ($err)" [ "$code" = 0 ]
    contains "$dev $message" "$out" '"success": true,'
    time[$dev]=$(sed -n 's/^ *"serverTime": \([0-9]*\),*$/\1/p' <<<"$out")
}
if start_server "${key[@]}"; then
    for dev in a b; do
        send "$dev" prereg prereg
        code[$dev]=$(sed -n 's/^ *"regCode": "\(.*\)",*$/\1/p' <<<"$out")
    done
    check "two codes: ${code[a]} ${code[b]}" [ -n "${code[a]}" ] && [ "${code[a]}" != "${code[b]}" ]
    for dev in a b; do send "$dev" register register regType=0 "regCode=${code[$dev]}"; done
    for dev in a b; do
        send "$dev" authorization authorization movieId=7 'videoProfiles=["playready-h264mpl30-piff"]' \
            'audioProfiles=["heaac-2-piff"]'
        ticket[$dev]=$(sed -n 's/^ *"movieTicket": "\(.*\)",*$/\1/p' <<<"$out")
    done
    while IFS='|' read -r message answer sets; do
        message=${message// /} answer=${answer// /}
        for dev in a b; do
            eval "set -- $sets"
            send "$dev" "$message" "$answer" "$@"
        done
    done <<'EOF_STEPS'
ping             |plain            |
playdata         |plain            |"lticket=${ticket[$dev]}" movieId=7
logblob          |plain            |sequenceNumber=1 logData=Ym9vdA==
authrenew        |authrenew        |renewalType=3 nasToken=n-1
x509provision    |x509provision    |
ecclinkprovision |ecclinkprovision |nasToken=nas-42
npticketprovision|npticketprovision|
webapienroll     |plain            |oauthRequestToken=t oauthConsumerKey=k
register         |register         |regType=1
tokenregister    |register         |'idCookies=[{"name":"SecureId","value":"abc"}]'
webapiproxy      |webapiproxy      |url=/v1/titles
EOF_STEPS
    contains "proxied body" "$out" '"httpBody": "<zuvo:httpbody><![CDATA[{'
    # A chunked body over the limit is refused with 413, not kept whole.
    status=$(head -c 3000000 /dev/zero | curl -sS --max-time 10 -o /dev/null -w '%{http_code}' \
        -H 'Transfer-Encoding: chunked' --data-binary @- "$url")
    check "chunked body over the limit: $status" [ "$status" = 413 ]
    # Three requests sent at once on one connection get their three answers
    # in order; the last asks to close, which ends the read.
    port=${url#http://127.0.0.1:}
    port=${port%/}
    request() {
        printf 'POST %s HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: %d\r\n%b\r\n' "$1" \
            "$(stat -c %s "$2")" "${3-}"
        cat "$2"
    }
    { request / "$scratch/ping.xml" && request / "$scratch/hello" &&
        request /x "$scratch/ping.xml" 'Connection: close\r\n'; } >"$scratch/pipelined"
    exec {fd}<>"/dev/tcp/127.0.0.1/$port"
    cat "$scratch/pipelined" >&"$fd"
    answers=$(timeout 5 cat <&"$fd" | sed -n 's/^HTTP\/1\.1 \([0-9]*\) .*/\1/p' | tr '\n' ' ')
    exec {fd}>&-
    check "pipelined requests answered in order: $answers" [ "$answers" = "200 400 404 " ]
    stop_server TERM
fi

# Delayed answers hold no thread: a ping is answered at once while a
# pre-registration waits out 3 s, and SIGTERM answers one that would wait a
# minute and ends the server within a second.
cat >"$scratch/delays.json" <<'EOF_JSON'
{"rules": [
  {"message": "preregister", "call": 1, "delay": 3000},
  {"message": "preregister", "call": 2, "delay": 60000}
]}
EOF_JSON
if start_server "${key[@]}" --scenario "$scratch/delays.json"; then
    curl -sS --max-time 10 -o /dev/null -w '%{http_code}' --data-binary @"$scratch/prereg.xml" \
        "$url" >"$scratch/delayed" &
    delayed_pid=$!
    sleep 0.3
    status=$(curl -sS --max-time 1 -o /dev/null -w '%{http_code}' --data-binary @"$scratch/ping.xml" \
        "$url")
    check "ping beside a delayed answer: $status" [ "$status" = 200 ]
    kill -0 "$delayed_pid" 2>/dev/null
    check "the delayed answer still waits" [ $? = 0 ]
    wait "$delayed_pid"
    check "delayed answer: $(cat "$scratch/delayed")" [ "$(cat "$scratch/delayed")" = 200 ]
    curl -sS --max-time 10 -o /dev/null -w '%{http_code}' --data-binary @"$scratch/prereg.xml" \
        "$url" >"$scratch/delayed" &
    delayed_pid=$!
    sleep 0.5
    stop_server TERM 10
    check "SIGTERM during a minute's delay: exit $code" [ "$code" = 0 ]
    wait "$delayed_pid"
    check "held answer sent at the stop: $(cat "$scratch/delayed")" \
        [ "$(cat "$scratch/delayed")" = 200 ]
fi

# Slow clients: 64 connections that sent part of a header leave the server
# answering a fresh one, and SIGTERM ends it within a second with them still
# open, HAR file closed. A server killed outright leaves a HAR file that lacks only its
# closing brackets.
if start_server "${key[@]}" --har "$scratch/slow.har"; then
    port=${url#http://127.0.0.1:}
    port=${port%/}
    slow=()
    for _ in $(seq 64); do
        exec {fd}<>"/dev/tcp/127.0.0.1/$port" && printf 'POST / HTTP/1.1\r\nHo' >&"$fd" &&
            slow+=("$fd")
    done
    check "64 slow connections: ${#slow[@]}" [ "${#slow[@]}" = 64 ]
    status=$(curl -sS --max-time 1 -o /dev/null -w '%{http_code}' --data-binary @"$scratch/ping.xml" \
        "$url")
    check "probe beside slow connections: $status" [ "$status" = 200 ]
    stop_server TERM 10
    check "SIGTERM with slow connections: exit $code" [ "$code" = 0 ]
    for fd in "${slow[@]}"; do exec {fd}>&-; done
    run decode --har "$scratch/slow.har" "${key[@]}"
    contains "HAR file closed" "$out" '"request": "ping"'
fi
if start_server "${key[@]}" --har "$scratch/killed.har"; then
    for _ in 1 2 3; do post "$scratch/ping.xml"; done
    # An entry is appended once its answer has gone out, so the client can
    # see the third answer before the file holds it: wait (at most 5 s).
    for _ in $(seq 50); do
        [ "$(grep -o '"startedDateTime"' "$scratch/killed.har" | wc -l)" -ge 3 ] && break
        sleep 0.1
    done
    stop_server KILL 2>/dev/null
    printf ']}}' >>"$scratch/killed.har"
    check "killed: three entries, only the closing brackets missing" \
        json_true '.log.entries | length == 3' "$scratch/killed.har"
fi

# SIGINT ends a server that saw no traffic just as cleanly, HAR file and all.
if start_server --har "$scratch/empty.har" --path /zuvo/api; then
    check "path in url: $url" grep -q '/zuvo/api$' <<<"$url"
    stop_server INT
    check "SIGINT: exit $code" [ "$code" = 0 ]
    check "empty HAR file" json_true '.log.entries == []' "$scratch/empty.har"
fi

# The example scenario shipped with the tool is valid.
if start_server "${key[@]}" --scenario "$examples/serve-scenario.json"; then
    stop_server TERM
fi

# Errors that stop the server before it listens: one line, exit 2.
printf '{"rules": [{"message": "ping", "status": 200}]}' >"$scratch/bad.json"
if start_server; then
    busy=${url#http://127.0.0.1:}
    busy=${busy%/}
    while IFS='|' read -r what want message args; do
        [ -z "$what" ] && continue
        eval "set -- $args"
        expect_fail "$what" "$want" "$message" serve "$@"
    done <<EOF_CASES
bad scenario rule    |2|$scratch/bad.json: rules[0].status: expected an HTTP error status|--listen :0 --scenario $scratch/bad.json
missing scenario file|2|$scratch/none.json|--listen :0 --scenario $scratch/none.json
port in use          |2|cannot listen on 127.0.0.1:$busy|--listen 127.0.0.1:$busy
bad port             |2|the port must be a number from 0 to 65535|--listen 127.0.0.1:99999
no port              |2|expected HOST:PORT|--listen localhost
relative path        |2|--path 'zuvo': must start with /|--listen :0 --path zuvo
bad key              |2|invalid hex key|--listen :0 --key 12
HAR file not writable|2|cannot write the HAR file|--listen :0 --har $scratch/no/such/dir.har
EOF_CASES
    stop_server TERM
fi

# Without a key the whole session, sealed tickets included, is read without
# one: the key-less context is the identity cipher over Base64.
key=()
time=()
if start_server; then
    send p prereg prereg
    code[p]=$(sed -n 's/^ *"regCode": "\(.*\)",*$/\1/p' <<<"$out")
    send p register register regType=0 "regCode=${code[p]}"
    contains "key-less registration" "$out" '"clientTicket": "'
    send p authorization authorization movieId=7 'videoProfiles=["playready-h264mpl30-piff"]' \
        'audioProfiles=["heaac-2-piff"]'
    contains "key-less authorization" "$out" '"movieTicket": "'
    stop_server TERM
fi

finish
