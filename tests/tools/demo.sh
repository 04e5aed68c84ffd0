#!/usr/bin/env bash
# zuvo demo end to end: exit 0, every step with its request, response and
# parsed record, values carried from one step to the next, and payloads that
# open with the printed demo key.
# Usage: demo.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
source "$(dirname "$0")/common.sh"

expect_ok "demo runs" demo || { finish; exit 1; }
demo=$out

contains "steps" "$demo" "=== step 1: ping ===" "=== step 2: pre-registration ===" \
    "=== step 3: registration by code ===" "--- parsed with PlainParser ---" \
    "--- parsed with PreregSubParser ---" "--- parsed with RegSubParser ---" \
    ": log blob ==="
# The scripted server's answers, read back by the parsers.
contains "records" "$demo" '"regCode": "K7Q2MX",' '"userId": "subscriber-1042",' \
    '"userDescription": "Living room player"' '"success": true,' '"logUploads": [' \
    '<zuvo:regcode>K7Q2MX</zuvo:regcode>' '<zuvo:result method="logblob"/>'
# Authorization and the play data report that returns its ticket.
contains "catalogue" "$demo" "=== step 4: authorization ===" "--- parsed with AuthSubParser ---" \
    "=== step 5: play data ===" "=== step 6: log blob ===" '"movieId": 70143836,' \
    '"profile": "playready-h264hpl40-piff",' '"profile": "ddplus-5.1-piff",' \
    '"profile": "simplesdh",' '"isNative": true,' '"name": "cdn-alpha",' \
    '"name": "maxbitrate",' '"trickPlayInterval": 10,' '<zuvo:result method="playdata"/>'
ticket=$(sed -n 's/^  "movieTicket": "\(.*\)",$/\1/p' <<<"$demo")
check "demo: no movie ticket in the catalogue" [ -n "$ticket" ]
lticket=$(element_text zuvo:lticket "$demo")
check "demo: play data ticket '$lticket' is not the movie ticket $ticket" \
    [ "$(printf '%s' "$lticket" | base64 -w0)" = "$ticket" ]

check "demo: no completion line" grep -q '^session complete: [0-9]* steps$' <<<"$demo"

# Every payload is encrypted, and the printed key opens it.
demo_key=$(sed -n 2p <<<"$demo")
payload=$(element_text zuvo:payload "$(grep -m1 'encrypted="true"' <<<"$demo")")
expect_ok "demo payload opens with the demo key" payload --encrypted --key "$demo_key" "$payload"
contains "demo payload opens with the demo key" "$out" "<zuvo:clienttime>1700000000</zuvo:clienttime>"
checks=$((checks + 1))
grep -q 'encrypted="false"' <<<"$demo" && fail "demo: a payload went out unencrypted"

finish
