#!/usr/bin/env bash
# zuvo decode --html: the report opens in a headless browser with one row
# per exchange and no console error, and refers to nothing outside itself.
# Exits 77 (skipped) when /usr/bin/chromium is not installed.
# Usage: html-report.sh ZUVO_BINARY CAPTURES_DIR
ZUVO=$1
captures=$2
browser=/usr/bin/chromium
[ -x "$browser" ] || { echo "SKIP: $browser is not installed (apt-get install chromium)"; exit 77; }
source "$(dirname "$0")/common.sh"
lacks() { ! grep -Eiq "$@"; } # lacks PATTERN FILE

report=$scratch/report.html
run decode --har "$captures/mitmdump-reverse-curl-nokey.har" --format table --html "$report"
# Every outcome but one is in this capture, read whole without a key.
check "report: exit $code, err: $err" [ "$code" -eq 0 ]
check "report: written" [ -s "$report" ]
check "report: no external reference" lacks '(src|href)=|<script|@import|url\(' "$report"

# The page as the browser built it, and its console, from one run.
timeout 60 "$browser" --headless --no-sandbox --disable-gpu --disable-background-networking \
    --disable-component-update --disable-sync --no-first-run \
    --user-data-dir="$scratch/profile" --enable-logging=stderr --v=0 \
    --dump-dom "file://$report" >"$scratch/dom" 2>"$scratch/console"
check "browser: exit $?" [ -s "$scratch/dom" ]
check "one row per exchange" [ "$(grep -o '<tr class="exchange' "$scratch/dom" | wc -l)" = 10 ]
contains "rendered" "$(cat "$scratch/dom")" "refused by the server" "10 exchanges: 1 not protocol"
check "console errors: $(grep -i 'CONSOLE' "$scratch/console")" lacks 'CONSOLE' "$scratch/console"

finish
