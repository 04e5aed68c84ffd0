#!/usr/bin/env bash
# A small fleet through scripts/run-fleet: one master, two workers, 50
# devices for 10 s with short pauses. Passes when no request failed, every
# message of a device life was requested, and both workers sent statistics.
# Usage: check_fleet.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
src=$1
build=$2
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

"$src/scripts/run-fleet" --build "$build" --workers 2 --users 50 --spawn-rate 25 --time 10s \
    --think 0.05 --out "$out" || { tail -n 20 "$out"/master.log "$out"/serve.err; exit 1; }

/usr/bin/python3 - "$out" <<'PY'
import csv, sys
out = sys.argv[1]
rows = {(r["Type"], r["Name"]): r for r in csv.DictReader(open(f"{out}/fleet_stats.csv"))}
problems = []
total = rows.get(("", "Aggregated"))
if total is None or int(total["Failure Count"]) != 0:
    problems.append("failures: " + open(f"{out}/fleet_failures.csv").read())
for message in ("ping", "prereg", "register", "authorization", "playdata", "logblob", "authrenew"):
    row = rows.get(("POST", message))
    if row is None or int(row["Request Count"]) < 1:
        problems.append(f"{message} was never requested")
if ("device", "life") not in rows:
    problems.append("no device completed its life")
workers = open(f"{out}/workers.txt").read().split() if __import__("os").path.exists(f"{out}/workers.txt") else []
if len(workers) != 2:
    problems.append(f"{len(workers)} workers reported statistics, expected 2")
if problems:
    sys.exit("fleet check failed:\n  " + "\n  ".join(problems))
print("fleet check passed")
PY
