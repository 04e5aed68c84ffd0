#!/usr/bin/env bash
# The command line itself: help with an example on every command, version,
# and keys from keygen.
# Usage: cli.sh ZUVO_BINARY GOLDEN_DIR
ZUVO=$1
source "$(dirname "$0")/common.sh"

for command in "" build parse payload keygen demo; do
    # shellcheck disable=SC2086
    expect_ok "help of '$command'" $command --help
    contains "help of '$command'" "$out" "Usage: zuvo" "Example:"
done
expect_ok "help lists the messages" build --help
contains "help lists the messages" "$out" "ping, prereg, authorization, register, tokenregister"

expect_ok "version" --version
contains "version" "$out" "zuvo "

# Keys: 64 lower-case hex digits, different every time, accepted by --key.
expect_ok "keygen" keygen
first=$out
check "keygen printed '$first'" grep -qE '^[0-9a-f]{64}$' <<<"$first"
expect_ok "keygen again" keygen
check "keygen printed the same key twice" [ "$out" != "$first" ]
expect_ok "generated key is accepted" build ping --key "$first"
expect_ok "upper-case hex is accepted" build ping --key "$(tr a-f A-F <<<"$first")"

finish
