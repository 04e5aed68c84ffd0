#!/usr/bin/env bash
# zuvo parse: response documents of each type, with encrypted payloads made
# by `zuvo payload --encode`, printed as JSON and checked by content; and the
# rejected, malformed and undecryptable cases.
# Usage: parse.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
source "$(dirname "$0")/common.sh"

key=$("$ZUVO" keygen)
seal() { "$ZUVO" payload --encode --encrypted --key "$key" "$1"; }

# response METHOD BODY: a whole response document around BODY.
response() {
    cat <<EOF_DOC
<?xml version="1.0" encoding="UTF-8"?>
<zuvo:response xmlns:zuvo="http://www.zuvo.example/qrx/zuvo/2.7" version="2.7">
	<zuvo:responseheader>
		<zuvo:status><zuvo:success>true</zuvo:success><zuvo:code>17</zuvo:code>
			<zuvo:usertext>Welcome back</zuvo:usertext></zuvo:status>
		<zuvo:parameters>
			<zuvo:retrycontrol>3</zuvo:retrycontrol><zuvo:mintimeout>30</zuvo:mintimeout>
			<zuvo:highfrequencypollinterval>60</zuvo:highfrequencypollinterval>
			<zuvo:loglevel>debug</zuvo:loglevel><zuvo:loginterval>900</zuvo:loginterval>
			<zuvo:loguploads><zuvo:crash/><zuvo:bogus/><zuvo:application/></zuvo:loguploads>
			<zuvo:supportphone>+1-555-0100</zuvo:supportphone>
		</zuvo:parameters>
		<zuvo:payload encrypted="true">$(seal '<zuvo:servertime>1700000100</zuvo:servertime><zuvo:clienttime>1700000042</zuvo:clienttime>')</zuvo:payload>
	</zuvo:responseheader>
	<zuvo:result method="$1">$2</zuvo:result>
</zuvo:response>
EOF_DOC
}

# parse_case NAME TYPE BODY METHOD EXPECTED...: parses the document with
# --key and checks each EXPECTED line of the JSON.
parse_case() {
    local name=$1 type=$2 body=$3 method=$4
    shift 4
    response "$method" "$body" >"$scratch/$name.xml"
    expect_ok "parse $name" parse "$type" "$scratch/$name.xml" --key "$key" || return
    contains "parse $name" "$out" '"serverTime": 1700000100,' '"clientTime": 1700000042,' \
        '"protocolVersion": "2.7",' "\"method\": \"$method\"," '"success": true,' '"code": 17,' \
        '"userText": "Welcome back",' '"retryControl": 3,' '"minTimeout": 30,' \
        '"highFrequencyPollInterval": 60,' '"logLevel": "debug",' '"logInterval": 900,' \
        '"supportPhone": "+1-555-0100"' "$@"
}

parse_case plain plain '' ping '"logUploads": [
    "crash",
    "application"
  ],'

parse_case prereg prereg '<zuvo:regcode>K7Q2MX</zuvo:regcode><zuvo:totaltime>900</zuvo:totaltime>' \
    preregister '"regCode": "K7Q2MX",' '"retryInterval": 0,' '"totalTime": 900'

# Ticket bytes print as Base64: "CT-1" is Q1QtMQ==, "rs" is cnM=.
tickets='<zuvo:cticket expiration="1702592000">CT-1</zuvo:cticket><zuvo:rs>rs</zuvo:rs>'
parse_case register register "<zuvo:registrationdata><zuvo:userid> u-9 </zuvo:userid>
    <zuvo:userdescription>Living room</zuvo:userdescription>
    <zuvo:payload>$(seal "$tickets")</zuvo:payload></zuvo:registrationdata>" register \
    '"clientTicket": "Q1QtMQ==",' '"clientTicketExpiration": 1702592000,' '"rsData": "cnM=",' \
    '"userId": " u-9 ",' '"userDescription": "Living room"'

parse_case authrenew authrenew "<zuvo:authenticationrenewal><zuvo:payload>$(seal "$tickets")</zuvo:payload></zuvo:authenticationrenewal>" \
    authenticationrenewal '"clientTicket": "Q1QtMQ==",' '"clientTicketExpiration": 1702592000,' \
    '"rsData": "cnM="'

# Provision data is the "rs" text byte for byte: "cert-bytes" is Y2VydC1ieXRlcw==.
for type in x509provision ecclinkprovision npticketprovision; do
    parse_case "$type" "$type" '<zuvo:provisionresponsedata><zuvo:rs>cert-bytes</zuvo:rs></zuvo:provisionresponsedata>' \
        "$type" '"provisionData": "Y2VydC1ieXRlcw=="'
done

parse_case webapiproxy webapiproxy '<zuvo:webapiproxy><zuvo:httpbody>{"id": 7}</zuvo:httpbody></zuvo:webapiproxy>' \
    webapiproxy '"httpBody": "<zuvo:httpbody><![CDATA[{\"id\": 7}]]></zuvo:httpbody>"'

# The playback catalogue: nested records, shared subtitles, profiles by
# identifier, the movie ticket from the encrypted payload ("MT-1" is TVQtMQ==).
urls='<zuvo:downloadurls><zuvo:downloadurl><zuvo:expiration>1700086400</zuvo:expiration>
    <zuvo:cdnid>2</zuvo:cdnid><zuvo:url>http://beta.example/v1</zuvo:url></zuvo:downloadurl></zuvo:downloadurls>'
language='<zuvo:language><zuvo:displaytext>English</zuvo:displaytext><zuvo:iso639-1>en</zuvo:iso639-1>
    <zuvo:iso639-2>eng</zuvo:iso639-2><zuvo:iso639-3>eng</zuvo:iso639-3></zuvo:language>'
parse_case authorization authorization "<zuvo:authorization movie_id=\"70143836\">
<zuvo:cdns><zuvo:cdn><zuvo:name>cdn-beta</zuvo:name><zuvo:cdnid>2</zuvo:cdnid>
    <zuvo:rank>2</zuvo:rank><zuvo:weight>30</zuvo:weight></zuvo:cdn></zuvo:cdns>
<zuvo:videodownloadable><zuvo:downloadableid>v1</zuvo:downloadableid><zuvo:size>4000000</zuvo:size>
    <zuvo:bitrate>5800</zuvo:bitrate><zuvo:hd/><zuvo:videoprofile>playready-h264mpl30-piff</zuvo:videoprofile>
    <zuvo:resolution><zuvo:width>1920</zuvo:width><zuvo:height>1080</zuvo:height></zuvo:resolution>
    <zuvo:burnedinsubtitles>$language</zuvo:burnedinsubtitles>$urls</zuvo:videodownloadable>
<zuvo:audiotrack>$language<zuvo:isnative/><zuvo:audiodownloadable>
    <zuvo:downloadableid>a1</zuvo:downloadableid><zuvo:bitrate>96</zuvo:bitrate>
    <zuvo:audioprofile>heaac-2-piff</zuvo:audioprofile>$urls</zuvo:audiodownloadable></zuvo:audiotrack>
<zuvo:timedtexttrack><zuvo:timedtexttype>closedcaptions</zuvo:timedtexttype><zuvo:timedtextdownloadable>
    <zuvo:downloadableid>t1</zuvo:downloadableid><zuvo:timedtextprofile>h265</zuvo:timedtextprofile>
    </zuvo:timedtextdownloadable></zuvo:timedtexttrack>
<zuvo:trickplay><zuvo:trickplayid>4</zuvo:trickplayid><zuvo:trickplayinterval>-10</zuvo:trickplayinterval></zuvo:trickplay>
<zuvo:streamingparams><zuvo:streamingparam><zuvo:name>minbuffer</zuvo:name><zuvo:value>2000</zuvo:value>
    </zuvo:streamingparam></zuvo:streamingparams>
<zuvo:payload>$(seal '<zuvo:mticket expiration="1700086400">MT-1</zuvo:mticket>')</zuvo:payload>
</zuvo:authorization>" authorization \
    '"movieId": 70143836,' '"movieTicket": "TVQtMQ==",' '"movieTicketExpiration": 1700086400,' \
    '"downloadableId": "v1",' '"size": 4000000,' '"profile": "playready-h264mpl30-piff",' \
    '"bitrate": 5800,' '"resolutionWidth": 1920,' '"hd": true,' '"burnedInSubtitles": {' \
    '"displayText": "English",' '"iso6391": "en",' '"iso6393": "eng"' \
    '"url": "http://beta.example/v1"' '"cdnId": 2,' '"expiration": 1700086400,' \
    '"isNative": true,' '"profile": "heaac-2-piff",' '"type": 1,' '"profile": null,' \
    '"trickPlayId": 4' '"trickPlayInterval": -10,' '"name": "cdn-beta",' '"weight": 30' \
    '"name": "minbuffer",' '"value": "2000"'

# Standard input, and a header payload marked unencrypted needs no key.
response ping '' | sed 's#encrypted="true">[^<]*<#encrypted="false">PHp1dm86c2VydmVydGltZT41PC96dXZvOnNlcnZlcnRpbWU+<#' >"$scratch/plainb64.xml"
stdin_file=$scratch/plainb64.xml
expect_ok "parse from standard input" parse plain -
contains "parse from standard input" "$out" '"serverTime": 5,'
stdin_file=/dev/null

# Failures: exit 1 and one line on standard error locating the failure,
# FILE:LINE:COLUMN (from 1) and the open elements; --verbose adds the
# library's own report below it. No JSON.
# one_line DESCRIPTION: standard error is a single line.
one_line() { check "$1: more than one line on standard error: $err" [ "$(wc -l <"$scratch/err")" -eq 1 ]; }
printf '<zuvo:response><zuvo:result/></zuvo:response>' >"$scratch/nomethod.xml"
expect_fail "rejected document" 1 "zuvo: $scratch/nomethod.xml:1:16: 'result' without a 'method' attribute in PlainParser (open: response <start>)" parse plain "$scratch/nomethod.xml"
one_line "rejected document"
expect_fail "rejected, verbose" 1 "in AuthrenewSubParser (open: response <start>)" parse authrenew --verbose "$scratch/nomethod.xml"
contains "rejection report" "$err" "AuthrenewSubParser error:" "current tag = result" "stack = response <start>"
printf '<zuvo:response><zuvo:result method="a"><zuvo:authenticationrenewal><zuvo:payload><zuvo:x/>' >"$scratch/refused.xml"
expect_fail "element refused by a hook" 1 "zuvo: $scratch/refused.xml:1:82: element 'x' refused in AuthrenewSubParser (open: payload authenticationrenewal result response <start>)" parse authrenew "$scratch/refused.xml"
printf '<zuvo:response>\n  <zuvo:result method="x">\n</zuvo:response>' >"$scratch/malformed.xml"
expect_fail "malformed XML" 1 "zuvo: $scratch/malformed.xml:3:3: not well-formed XML: mismatched tag (open: result response <start>)" parse plain "$scratch/malformed.xml"
one_line "malformed XML"
stdin_file=$scratch/malformed.xml
expect_fail "malformed XML, verbose, standard input" 1 "zuvo: <stdin>:3:3: not well-formed XML" parse plain - --verbose
contains "expat report" "$err" "Parse error at offset 45: mismatched tag" '</[#!#]zuvo:response>'
stdin_file=/dev/null
# A payload the key cannot open is located like any other failure, in one line.
expect_fail "wrong key" 1 "the payload of 'payload' could not be opened in RegSubParser: " parse register "$scratch/register.xml" --key "$("$ZUVO" keygen)"
one_line "wrong key"
expect_fail "no key" 1 "no key was given" parse plain "$scratch/plain.xml"
contains "no key, located" "$err" "zuvo: $scratch/plain.xml:"
expect_fail "unreadable document" 2 "cannot read '$scratch/none.xml'" parse plain "$scratch/none.xml"

finish
