#!/usr/bin/env bash
# zuvo build: each message from a JSON record (encryption off, so documents
# are deterministic) against its golden document, --set on top of --in, and
# encrypted output that decrypts back with the same key.
# Usage: build.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
golden=$2
source "$(dirname "$0")/common.sh"

# case NAME MESSAGE [ARGS...]: golden/NAME.json in, golden/NAME.xml out.
case_() {
    local name=$1 message=$2
    shift 2
    if expect_ok "build $name" build "$message" --in "$golden/$name.json" "$@"; then
        "$ZUVO" build "$message" --in "$golden/$name.json" "$@" >"$scratch/$name.xml"
        cmp -s "$golden/$name.xml" "$scratch/$name.xml" ||
            fail "build $name: document differs: $(diff "$golden/$name.xml" "$scratch/$name.xml" | head -n 20)"
    fi
}

for name in ping prereg authorization playdata logblob webapienroll webapiproxy; do
    case_ "$name" "$name"
done
case_ register register --rc rc-1
case_ register-shopper register --rc rc-1
case_ tokenregister tokenregister --rc rc-2
case_ authrenew authrenew --rc rc-3
for name in x509provision npticketprovision ecclinkprovision; do
    case_ "$name" "$name" --rc rc-4
done

# Lists given to --set are JSON; fields not given keep their defaults.
expect_ok "--set list" build authorization --set 'timedTextProfiles=["simplesdh", 19]' \
    --set movieId=-5
contains "--set list" "$out" "<zuvo:movieid>-5</zuvo:movieid>" "<zuvo:trackid>0</zuvo:trackid>" \
    "<zuvo:videoprofiles/>" "<zuvo:timedtextprofile>simplesdh</zuvo:timedtextprofile>" \
    "<zuvo:timedtextprofile/>"
expect_ok "--set base64 bytes" build logblob --set logData=AP8= --set sequenceNumber=2
contains "--set base64 bytes" "$out" "<zuvo:logdata>AP8=</zuvo:logdata>"

# --set applies after --in and converts by the field's type.
stdin_file=$golden/ping.json
expect_ok "--set over --in" build ping --in - --set softwareVersion=9.9 --set clientTime=7
contains "--set over --in" "$out" "<zuvo:softwareversion>9.9</zuvo:softwareversion>" \
    "<zuvo:uiversion>1.0</zuvo:uiversion>"
payload=$(element_text zuvo:payload "$out")
expect_ok "header payload decodes" payload "$payload"
contains "header payload decodes" "$out" "<zuvo:clienttime>7</zuvo:clienttime>"
stdin_file=/dev/null

# With a key the header payload is encrypted and only that key opens it.
key=$("$ZUVO" keygen)
expect_ok "encrypted ping" build ping --key "$key" --set serverTime=1234
contains "encrypted ping" "$out" 'encrypted="true"'
payload=$(element_text zuvo:payload "$out")
expect_ok "encrypted payload opens" payload --encrypted --key "$key" "$payload"
contains "encrypted payload opens" "$out" "<zuvo:servertime>1234</zuvo:servertime>"
printf '  %s\n' "$key" >"$scratch/key"
expect_ok "key file with white space" payload --encrypted --key-file "$scratch/key" "$payload"
expect_fail "wrong key" 1 "could not be decrypted" payload --encrypted --key "$("$ZUVO" keygen)" "$payload"

# That every message payload seals the same fragment as the plain document
# carries is checked by decode.sh, which decodes both forms of each.

finish
