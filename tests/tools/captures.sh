#!/usr/bin/env bash
# zuvo decode --har on real captures (written by browsers and a proxy) and
# on hand-edited variants: one odd entry stays with that entry, the file's
# own faults are named, sessions read in start order, the table view and
# its filters, and a key that is missing or wrong.
# Usage: captures.sh ZUVO_BINARY CAPTURES_DIR
ZUVO=$1
captures=$2
source "$(dirname "$0")/common.sh"
command -v jq >/dev/null || { echo "FAIL: jq is needed"; exit 1; }
holds() { jq -e "$@" >/dev/null; }
key=(--key-file "$captures/device.key")
ff=$captures/firefox-esr-autoexport-key.har

# Every capture decodes whole with its key: each protocol exchange with its
# outcome, the other entries skipped with a reason. The keyless session reads
# whole without a key, its tickets included: without a key the cipher
# context is the identity over Base64.
while read -r file keyed exchanges skipped outcomes; do
    args=()
    [ "$keyed" = key ] && args=("${key[@]}")
    run decode --har "$captures/$file" "${args[@]}"
    check "$file: exit $code: $err" [ "$code" -eq "$(grep -q unreadable <<<"$outcomes" && echo 1 || echo 0)" ]
    check "$file: counts and outcomes: $(jq -c '[(.exchanges | length), (.skipped | length), .outcomes]' <<<"$out")" \
        holds --argjson o "$outcomes" ".exchanges | length == $exchanges" <<<"$out"
    check "$file: summary" holds --argjson o "$outcomes" \
        "(.skipped | (length == $skipped) and all(.[]; .reason != \"\")) and .outcomes == \$o" <<<"$out"
    check "$file: start order" holds '[.exchanges[].startedDateTime] | . == sort' <<<"$out"
done <<'EOF'
firefox-esr-autoexport-key.har key 7 2 {"not protocol":1,"ok":6}
firefox-esr-autoexport-no-protocol.har - 0 2 {}
mitmdump-reverse-curl-nokey.har - 10 4 {"not protocol":1,"ok":7,"refused":1,"rejected":1}
chromium-devtoolsstyle-via-mitm-octet-base64-key.har key 3 2 {"ok":3}
mitmdump-regular-chromium-octet-key.har key 3 1 {"ok":3}
EOF
contains "the server's 400 text" "$(jq -c '.exchanges[] | select(.status == 400)' <<<"$(
    "$ZUVO" decode --har "$ff" "${key[@]}")")" '"statusText":"Bad Request"' \
    '"outcome":"not protocol","reason":"scripted server refused the request: the play data ticket'

# Without the key, or with the wrong one, the header still shows; only what
# the payloads held is marked unreadable, and a wrong key is named.
for k in none wrong; do
    args=()
    [ $k = wrong ] && args=(--key-file "$captures/wrong.key")
    run decode --har "$ff" "${args[@]}"
    check "$k key: exit $code" [ "$code" -eq 1 ]
    check "$k key: header fields" holds 'all(.exchanges[] | select(.response.unreadable);
        (.response.fields | has("success")) and (.response.unreadable.fields | index("serverTime")))
        and (.outcomes.unreadable == 7)' <<<"$out"
done
contains "wrong key" "$err" "probably the wrong key"

# One odd entry (each fault a real exporter has written) leaves every other
# exchange decoded; the entry says what is odd.
base64body=$(jq -r '.log.entries[1].response.content.text' "$ff" | base64 -w0)
urlsafe=$(tr '+/' '-_' <<<"$base64body" | tr -d '=')
while IFS='#' read -r entry edit ok want; do
    jq ".log.entries[$entry] |= ($edit)" "$ff" >"$scratch/odd.har" || fail "jq: $edit"
    run decode --har "$scratch/odd.har" "${key[@]}"
    check "odd entry ($edit): exit $code, err: $err" [ "$code" -eq 0 ]
    check "odd entry ($edit): $(jq -c .outcomes <<<"$out") ok, wanted $ok" holds ".outcomes.ok == $ok" <<<"$out"
    contains "odd entry ($edit)" "$(jq -c '.exchanges, .skipped' <<<"$out")" "$want"
done <<EOF
1#.response.status = "4x4"#6#response.status is the string \"4x4\"
3#.response.status = 200.0#6#"status":200,
3#del(.response.content)#5#no response.content
3#.response = null#5#response is null
3#del(.startedDateTime)#6#no startedDateTime
3#del(.time) | .timings = {blocked: -1, send: 1, wait: 40.5, receive: 2}#6#"time":43.5,
3#.response.content.mimeType = null | .response.statusText = null | .request.httpVersion = null#6#"entry":4
3#.response.content.encoding = ""#6#"entry":4
1#.response.content |= (.text = "$base64body" | .encoding = "BASE64")#6#"entry":2
1#.response.content |= (.text = "$urlsafe" | .encoding = "base64")#6#"entry":2
1#.response.content |= (.text = "%%%" | .encoding = "base64")#5#response.content.text: not Base64
4#42#5#the entry is the number 42
4#.request.postData.text = "junk"#5#POST whose request body (text/xml) is not a protocol request: junk
4#del(.request.postData)#5#POST whose request body the capture does not hold
4#.response = {status: 0, statusText: "", content: {size: 0, mimeType: "x-unknown"}} | ._error = "net::ERR_FAILED"#5#"outcome":"no response","reason":"net::ERR_FAILED"
EOF
check "a status \"404\" is read as 404" holds '.exchanges[0].status == 404' <<<"$(
    jq '.log.entries[1].response.status = "404"' "$ff" | "$ZUVO" decode --har - "${key[@]}")"

# A lone surrogate escape (a byte a proxy could not decode) is read as U+FFFD.
mitm=$captures/mitmdump-reverse-curl-nokey.har
sed '0,/"url": "http/s//"url": "http\\udce9/' "$mitm" >"$scratch/surrogate.har"
run decode --har "$scratch/surrogate.har" --jsonl
check "lone surrogate: all ten" [ "$(wc -l <<<"$out")" = 10 ]
contains "lone surrogate" "$(head -n 1 <<<"$out")" '"url":"http�://'

# Order: entries written out of order are decoded in start order; the same
# exchange recorded twice is flagged.
jq '.log.entries |= (reverse) + [.[1]]' "$ff" >"$scratch/reversed.har"
run decode --har "$scratch/reversed.har" "${key[@]}" --jsonl
check "reversed: exit $code" [ "$code" -eq 0 ]
check "reversed: entries in start order" [ "$(jq -r .entry <<<"$out" | tr '\n' ' ')" = "8 10 6 5 4 3 2 1 " ]
check "reversed: duplicate" holds -s '.[1].duplicateOf == 8 and .[0].duplicateOf == null' <<<"$out"

# A file that stops mid-entry keeps the entries before it; one still being
# written (no closing brackets) is read whole.
head -c "$(grep -b -o '"startedDateTime"' "$ff" | sed -n '7p' | cut -d: -f1)" "$ff" >"$scratch/cut.har"
run decode --har "$scratch/cut.har" "${key[@]}" --format table
check "cut: exit $code" [ "$code" -eq 0 ]
contains "cut" "$out" "3 exchanges: 3 ok; 2 of 5 entries skipped" \
    "warning: the file stops inside entry 6 (its writer was stopped mid-write?): read the 5 entries before it"
jq . "$ff" | head -n -3 >"$scratch/open.har"
run decode --har "$scratch/open.har" "${key[@]}"
check "open: all seven, exit $code" holds '(.exchanges | length) == 7' <<<"$out"
contains "open" "$err" "without its closing brackets"

# The file's own faults are named, and nothing is printed.
: >"$scratch/empty.har"
iconv -f UTF-8 -t UTF-16 "$ff" >"$scratch/utf16.har"
{ cat "$ff"; echo '{"x": 1}'; } >"$scratch/two.har"
{ cat "$ff"; echo ' ]'; } >"$scratch/trailing.har"
while IFS='|' read -r file message; do
    expect_fail "file fault: $file" 1 "$message" decode --har "$scratch/$file"
done <<'EOF'
empty.har|the file is empty
utf16.har|its text is UTF-16 (it starts with a byte order mark); HAR files are UTF-8
two.har|a second JSON document follows the archive
trailing.har|data follows the archive's closing '}'
EOF
expect_fail "--har ''" 2 "--har needs a file name" decode --har ''

# The table: one line per exchange after the heading, a closing summary;
# --failed and --message filter every format.
run decode --har "$mitm" --format table --verbose
check "table: lines" [ "$(wc -l <<<"$out")" = $((1 + 10 + 4 + 1)) ]
contains "table" "$out" "14:51:46.279     1  ping               200 OK" \
    "refused by the server   Try again later" "400 Bad Request" "not protocol            scripted server" \
    "entry 11 skipped: OPTIONS without a request body" "10 exchanges: 1 not protocol, 7 ok, 1 refused by the server, 1 rejected by the parser; 4 of 14 entries skipped"
run decode --har "$mitm" --failed --jsonl
contains "--failed: summary" "$err" "zuvo: 10 exchanges: 1 not protocol"
check "--failed: $(jq -r .outcome <<<"$out" | tr '\n' ,)" holds -s 'length == 3 and all(.[]; .outcome != "ok")' <<<"$out"
run decode --har "$mitm" --message ping --message prereg
check "--message" holds '[.exchanges[].message] == ["ping", "ping", "prereg", "prereg"]' <<<"$out"

finish
