#!/usr/bin/env bash
# Bad input: each case gives its exit code (2 usage, 1 rejected), one line on
# standard error naming the bad input, and nothing on standard output.
# Usage: errors.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
golden=$2
source "$(dirname "$0")/common.sh"

printf '{"softwareVersion": 3}' >"$scratch/wrongtype.json"
printf '{"softwareVersion": "1", "movieID": 3}' >"$scratch/unknown.json"
printf '{"softwareVersion": ' >"$scratch/broken.json"
printf '[1, 2]' >"$scratch/array.json"
printf 'zz%.0s' {1..32} >"$scratch/badkey"

# description | exit code | message on standard error | arguments
while IFS='|' read -r what want message args; do
    [ -z "$what" ] && continue
    eval "set -- $args"
    expect_fail "$what" "$want" "$message" "$@"
done <<EOF_CASES
no command                 |2|A subcommand is required|
unknown command            |2|unknown command 'frobnicate'|frobnicate
unknown message            |2|unknown message 'pong'|build pong
unknown --set field        |2|unknown field 'colour'|build ping --set colour=red
--set without =            |2|--set 'softwareVersion': expected field=value|build ping --set softwareVersion
number field given text    |2|field 'clientTime' expects an integer from 0 to 4294967295, got 'soon'|build ping --set clientTime=soon
negative unsigned          |2|field 'serverTime' expects an integer from 0 to 4294967295, got -1|build ping --set serverTime=-1
unsigned out of range      |2|got 4294967296|build ping --set serverTime=4294967296
wrong JSON type in --in    |2|field 'softwareVersion' expects a string, got 3|build ping --in $scratch/wrongtype.json
unknown field in --in      |2|unknown field 'movieID'|build ping --in $scratch/unknown.json
broken JSON                |2|is not valid JSON|build ping --in $scratch/broken.json
JSON that is not an object |2|must hold a JSON object|build ping --in $scratch/array.json
unreadable input file      |2|cannot read '$scratch/missing.json'|build ping --in $scratch/missing.json
directory as input         |2|it is a directory|build ping --in $scratch
--rc where none is taken   |2|message 'ping' takes no --rc|build ping --rc abc
short hex key              |2|invalid hex key: expected 64 hex digits, got 6|build ping --key abcdef
non-hex key                |2|invalid hex key: character 1 is not a hex digit|build ping --key $(printf 'g%.0s' {1..64})
bad key file               |2|in key file '$scratch/badkey'|build ping --key-file $scratch/badkey
missing key file           |2|cannot read '$scratch/nokey'|build ping --key-file $scratch/nokey
both key options           |2|--key excludes --key-file|build ping --key 00 --key-file $scratch/badkey
unknown profile            |2|field 'videoProfiles[1]': unknown profile identifier 'h265'|build authorization --set 'videoProfiles=["simplesdh","h265"]'
profile out of range       |2|field 'audioProfiles[0]' expects a profile identifier|build authorization --set 'audioProfiles=[21]'
list given a string        |2|field 'videoProfiles' expects a JSON array, got 'simplesdh'|build authorization --set videoProfiles=simplesdh
unknown nested field       |2|unknown field 'idCookies[0].nme'|build tokenregister --set 'idCookies=[{"nme": "a"}]'
bytes not Base64           |2|field 'lticket' expects Base64 text|build playdata --set 'lticket=no*base64'
renewal type refused       |2|authrenew:|build authrenew --set renewalType=2
unknown response type      |2|unknown response type 'pong'|parse pong $golden/ping.xml
encrypted payload, no key  |2|--encrypted needs the key|payload --encrypted abc
payload not Base64         |1|payload is not Base64 text|payload 'a*b'
payload not decryptable    |1|payload could not be decrypted|payload --encrypted --key $(printf '0%.0s' {1..64}) QUJD
EOF_CASES

# Every failure is one line.
run build ping --set colour=red
check "usage error takes more than one line: $err" [ "$(wc -l <"$scratch/err")" -eq 1 ]

finish
