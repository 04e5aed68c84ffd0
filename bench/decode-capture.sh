#!/usr/bin/env bash
# zuvo decode --har on a large capture (10,000 entries, about 45 MB): wall
# time, peak memory and the time to the first JSON line, for two builds of
# the tool side by side in one run.
# Usage: bench/decode-capture.sh BASELINE_ZUVO CANDIDATE_ZUVO
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
captures=$here/tests/tools/captures
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The keyed browser capture's entries, repeated; each copy a few ms later.
jq -c --argjson n 10000 '.log.entries as $e | .log.entries = [range($n) as $i |
    $e[$i % ($e | length)] | .startedDateTime = (1700000000 + $i / 100 | todate)]' \
    "$captures/firefox-esr-autoexport-key.har" >"$work/big.har"
echo "capture: $(jq '.log.entries | length' "$work/big.har") entries, $(($(stat -c %s "$work/big.har") / 1000000)) MB"
measure() { # ZUVO LABEL
    local start first
    /usr/bin/time -f "%e %M" -o "$work/time" "$1" decode --har "$work/big.har" --jsonl \
        --key-file "$captures/device.key" >"$work/out" 2>/dev/null || true
    read -r seconds kilobytes < <(tail -n 1 "$work/time")
    start=$(date +%s%N)
    "$1" decode --har "$work/big.har" --jsonl --key-file "$captures/device.key" 2>/dev/null | head -n 1 >/dev/null || true
    first=$((($(date +%s%N) - start) / 1000000))
    echo "$2: ${seconds} s, peak $((kilobytes / 1024)) MB, first line after ${first} ms, $(wc -l <"$work/out") lines"
    eval "${2}_s=$seconds ${2}_kb=$kilobytes"
}
measure "$1" baseline
measure "$2" candidate
awk -v a="$baseline_s" -v b="$candidate_s" -v m="$baseline_kb" -v n="$candidate_kb" \
    'BEGIN { printf "candidate/baseline: time %.2f, peak memory %.2f\n", b / a, n / m }'
