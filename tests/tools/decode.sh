#!/usr/bin/env bash
# zuvo decode: every request message read back from its document (with and
# without a key), every response type recognised from its body alone, the
# demo's HAR file decoded whole, response types paired through the request,
# and the bad inputs.
# Usage: decode.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
golden=$2
source "$(dirname "$0")/common.sh"
command -v jq >/dev/null || { echo "FAIL: jq is needed"; exit 1; }

key=$("$ZUVO" keygen)
# holds [JQ ARGS...] FILTER [FILE]: FILTER is true of the JSON (quietly).
holds() { jq -e "$@" >/dev/null; }

# Requests: the decoded fields build the golden document again, byte for
# byte (so values the document cannot hold, such as registration type 7,
# are checked by what they write); with a key, every payload opens and the
# fields are the same as without.
while read -r name message rc; do
    rcargs=()
    [ "$rc" = - ] || rcargs=(--rc "$rc")
    "$ZUVO" build "$message" --in "$golden/$name.json" "${rcargs[@]}" >"$scratch/$name.xml"
    expect_ok "decode $name" decode "$scratch/$name.xml" || continue
    plain=$out
    check "decode $name: message and rc" \
        [ "$(jq -r '.request + " " + (.rc // "-")' <<<"$plain")" = "$message $rc" ]
    jq .fields <<<"$plain" >"$scratch/$name.fields.json"
    "$ZUVO" build "$message" --in "$scratch/$name.fields.json" "${rcargs[@]}" >"$scratch/$name.again.xml"
    check "decode $name: rebuilt document differs" cmp -s "$scratch/$name.xml" "$scratch/$name.again.xml"

    "$ZUVO" build "$message" --in "$golden/$name.json" "${rcargs[@]}" --key "$key" >"$scratch/$name.sealed.xml"
    expect_ok "decode sealed $name" decode "$scratch/$name.sealed.xml" --key "$key" || continue
    check "decode sealed $name: payloads not all opened, or fields differ from the plain decode" \
        holds --slurpfile plain "$scratch/$name.fields.json" \
        '.fields == $plain[0] and all(.payloads[]; .encrypted and has("document") and has("fields"))' <<<"$out"
done <<'EOF'
ping ping -
prereg prereg -
authorization authorization -
register register rc-1
register-shopper register rc-1
tokenregister tokenregister rc-2
authrenew authrenew rc-3
playdata playdata -
logblob logblob -
x509provision x509provision rc-4
ecclinkprovision ecclinkprovision rc-4
npticketprovision npticketprovision rc-4
webapienroll webapienroll -
webapiproxy webapiproxy -
EOF

# Payloads show what they carry; the header's times come from its payload.
contains "payload fields" "$(jq -c '.payloads' <<<"$plain")" '"element":"header/payload"' \
    '"fields":{"serverTime":1700000000,"clientTime":1700000042}'
contains "registration payload" "$("$ZUVO" decode "$scratch/register.xml" | jq -c .payloads[1])" \
    '"element":"register/rendezvousreg/payload"' '"fields":{"rc":"rc-1"}' '<zuvo:rc version=\"1\">rc-1</zuvo:rc>'

# Another namespace is read, with a note.
sed 's#xmlns:zuvo="[^"]*"#xmlns:zuvo="http://other.example/qrx/zuvo/2.8"#' "$scratch/ping.xml" >"$scratch/other.xml"
expect_ok "other namespace" decode "$scratch/other.xml"
contains "other namespace" "$out" '"namespace": "http://other.example/qrx/zuvo/2.8 (this build writes'

# A payload that does not open: the request is still printed, without the
# fields the payload held, and the run fails.
for args in "--key $("$ZUVO" keygen)|could not be decrypted" "|give the key"; do
    run decode "$scratch/playdata.sealed.xml" ${args%|*}
    check "undecryptable ($args): exit $code" [ "$code" -eq 1 ]
    contains "undecryptable ($args)" "$err" "a payload of the request could not be opened"
    check "undecryptable ($args): output" holds --arg why "${args#*|}" \
        '(.fields | has("lticket") and (has("movieId") | not) and (has("clientTime") | not))
         and (.payloads[1].error | contains($why))' <<<"$out"
done

# Responses: each type recognised from its result alone, its fields as
# `zuvo parse TYPE` prints them.
times=$("$ZUVO" payload --encode '<zuvo:servertime>5</zuvo:servertime><zuvo:clienttime>6</zuvo:clienttime>')
response() { # METHOD BODY
    printf '<?xml version="1.0"?>\n<zuvo:response version="2.7"><zuvo:responseheader>%s%s</zuvo:responseheader><zuvo:result method="%s">%s</zuvo:result></zuvo:response>\n' \
        '<zuvo:status><zuvo:success>true</zuvo:success></zuvo:status>' \
        "<zuvo:payload encrypted=\"false\">$times</zuvo:payload>" "$1" "$2"
}
tickets=$("$ZUVO" payload --encode --encrypted --key "$key" '<zuvo:cticket expiration="9">CT-1</zuvo:cticket><zuvo:rs>rs</zuvo:rs>')
while IFS='|' read -r type method body; do
    response "$method" "$body" >"$scratch/$type.response.xml"
    expect_ok "recognise $type" decode "$scratch/$type.response.xml" --key "$key" || continue
    check "recognise $type: type" [ "$(jq -r .response <<<"$out")" = "$type" ]
    check "recognise $type: fields differ from parse" \
        [ "$(jq -c .fields <<<"$out")" = "$("$ZUVO" parse "$type" "$scratch/$type.response.xml" --key "$key" | jq -c .)" ]
done <<EOF
plain|ping|
prereg|preregister|<zuvo:regcode>K7Q2MX</zuvo:regcode>
register|register|<zuvo:registrationdata><zuvo:userid>u</zuvo:userid><zuvo:payload>$tickets</zuvo:payload></zuvo:registrationdata>
authrenew|authenticationrenewal|<zuvo:authenticationrenewal><zuvo:payload>$tickets</zuvo:payload></zuvo:authenticationrenewal>
x509provision|x509provision|<zuvo:provisionresponsedata><zuvo:rs>c</zuvo:rs></zuvo:provisionresponsedata>
ecclinkprovision|ecclinkprovision|<zuvo:provisionresponsedata><zuvo:rs>c</zuvo:rs></zuvo:provisionresponsedata>
npticketprovision|npticketprovision|<zuvo:provisionresponsedata><zuvo:rs>c</zuvo:rs></zuvo:provisionresponsedata>
webapiproxy|webapiproxy|<zuvo:webapiproxy><zuvo:httpbody>{}</zuvo:httpbody></zuvo:webapiproxy>
authorization|authorization|<zuvo:authorization movie_id="7"></zuvo:authorization>
EOF

# A body that does not tell: refused, unless --type names the parser.
response provision '<zuvo:provisionresponsedata><zuvo:rs>c</zuvo:rs></zuvo:provisionresponsedata>' >"$scratch/vague.xml"
expect_fail "undecidable response" 1 "does not tell which parser reads it; give --type" decode "$scratch/vague.xml"
expect_ok "--type overrides" decode "$scratch/vague.xml" --type npticketprovision
check "--type overrides: type" [ "$(jq -r .response <<<"$out")" = npticketprovision ]

# The demo's session: every exchange decodes completely with the demo key,
# each response read with the parser its request calls for.
demo_key=000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f
expect_ok "demo --har" demo --har "$scratch/demo.har"
expect_ok "decode demo HAR" decode --har "$scratch/demo.har" --key "$demo_key"
check "demo HAR: pairs" [ "$(jq -c '[.exchanges[] | [.request.request, .response.response]]' <<<"$out")" = \
    '[["ping","plain"],["prereg","prereg"],["register","register"],["authorization","authorization"],["playdata","plain"],["logblob","plain"]]' ]
check "demo HAR: exchanges" holds '.entries == 6 and .skipped == [] and all(.exchanges[];
    .method == "POST" and .status == 200 and (.startedDateTime | test("Z$"))
    and all(.request.payloads[]; has("fields")) and .response.fields.success)' <<<"$out"
contains "demo HAR: values" "$(jq -c .exchanges <<<"$out")" '"regCode":"K7Q2MX"' '"rc":"demo-rc-7f3a"' \
    '"movieId":70143836' '"userId":"subscriber-1042"'
check "demo HAR: required members" holds '.log.version == "1.2" and all(.log.entries[];
    (.request | has("httpVersion") and has("cookies") and has("headers") and has("queryString") and has("headersSize") and has("bodySize"))
    and (.response | has("statusText") and has("redirectURL") and (.content.size == (.text // .content.text | length))))' \
    "$scratch/demo.har"

# Without the key every exchange is still printed, one JSON line each.
run decode --har "$scratch/demo.har" --jsonl
check "HAR without key: exit $code" [ "$code" -eq 1 ]
contains "HAR without key" "$err" "6 exchanges could not be read completely (outcome \"unreadable\")"
check "HAR without key: six lines" [ "$(jq -c .entry <<<"$out" | tr '\n' ' ')" = "1 2 3 4 5 6 " ]

# Other traffic is skipped; Base64 bodies are read; a missing body is said,
# and a response is paired through its request even where its body alone
# would not tell.
jq --arg body "$(base64 -w0 "$scratch/vague.xml")" --rawfile x509 "$scratch/x509provision.xml" '
    .log.entries[0].response.content |= (.text = $body | .encoding = "base64")
    | .log.entries[0].request.postData.text = $x509
    | .log.entries[1].response.content |= del(.text)
    | .log.entries += [{startedDateTime: "2026-01-01T00:00:00Z", request: {method: "GET", url: "http://x/"},
                         response: {status: 200, content: {}}},
                       {startedDateTime: "2026-01-01T00:00:00Z", request: {method: "POST", url: "http://x/",
                         postData: {mimeType: "application/x-www-form-urlencoded", params: []}},
                         response: {status: 200, content: {}}}]' "$scratch/demo.har" >"$scratch/mixed.har"
expect_ok "mixed HAR" decode --har "$scratch/mixed.har" --key "$demo_key"
check "mixed HAR: summary" holds '.entries == 8 and (.skipped | length) == 2' <<<"$out"
check "mixed HAR: paired through the request" \
    [ "$(jq -r '.exchanges[0].response.response' <<<"$out")" = x509provision ]
contains "mixed HAR: missing body" "$(jq -c '.exchanges[1].response' <<<"$out")" "no response body"

# Bad input.
printf 'hello' >"$scratch/text"
printf '<html><body/></html>' >"$scratch/html"
head -c 300 "$scratch/ping.xml" >"$scratch/truncated.xml"
sed 's/zuvo:ping/zuvo:pong/' "$scratch/ping.xml" >"$scratch/pong.xml"
sed 's/<zuvo:movieid>[^<]*</<zuvo:movieid>x1</' "$scratch/authorization.xml" >"$scratch/badnumber.xml"
printf '<zuvo:response>\n<zuvo:result method="x"></zuvo:response>' >"$scratch/badresponse.xml"
printf '{"log" {}}' >"$scratch/broken.har"
printf '{"entries": []}' >"$scratch/notahar.har"
jq '.log.entries[2].response.content.text = "<zuvo:response><zuvo:result method=\"x\"></zuvo:response>"' "$scratch/demo.har" >"$scratch/badresponse.har"
while IFS='|' read -r want message args; do
    # shellcheck disable=SC2086
    expect_fail "bad input: $args" "$want" "$message" decode $args
done <<EOF
1|is not a protocol document: not well-formed XML|$scratch/text
1|its document element is <html>, neither|$scratch/html
1|not well-formed XML|$scratch/truncated.xml
1|unknown message element <zuvo:pong>|$scratch/pong.xml
1|field 'movieId' expects a 32-bit signed integer, got the string "x1"|$scratch/badnumber.xml
1|badresponse.xml:2:27: not well-formed XML: mismatched tag (open: result response <start>)|$scratch/badresponse.xml
1|is not a HAR file: not valid JSON at line 1, column 8: expected ':' after a member name|--har $scratch/broken.har
1|is not a HAR file: no "log" object|--har $scratch/notahar.har
2|cannot read|--har $scratch/none.har
2|--jsonl requires --har|--jsonl $scratch/ping.xml
2|unknown response type 'pong'|--type pong $scratch/vague.xml
2|--type applies to responses|--type plain $scratch/ping.xml
EOF
# A response the parser rejects is an outcome of the exchange, not a failure
# to read the capture.
expect_ok "malformed response in a HAR" decode --har "$scratch/badresponse.har" --key "$demo_key"
check "malformed response in a HAR: the others still read" \
    holds '(.exchanges[2] | .outcome == "rejected" and (.response.error | startswith("response:1:42: not well-formed XML")))
           and .exchanges[3].response.fields.success' <<<"$out"

finish
