# Helpers shared by the zuvo tool tests. Source it after setting ZUVO to the
# binary under test; each test script ends with `finish`.
set -uo pipefail

failures=0
checks=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# run ARGS...: runs the tool with standard input from $stdin_file (default
# /dev/null); leaves the exit code in $code, the outputs in $out and $err.
stdin_file=/dev/null
run() {
    "$ZUVO" "$@" <"$stdin_file" >"$scratch/out" 2>"$scratch/err"
    code=$?
    out=$(cat "$scratch/out")
    err=$(cat "$scratch/err")
}

# expect_ok DESCRIPTION ARGS...: exit 0 and nothing on standard error.
expect_ok() {
    local what=$1
    shift
    checks=$((checks + 1))
    run "$@"
    if [ "$code" -ne 0 ] || [ -n "$err" ]; then
        fail "$what: exit $code, stderr: $err"
        return 1
    fi
}

# expect_fail DESCRIPTION CODE MESSAGE ARGS...: exit CODE, standard error
# holding MESSAGE (a fixed string), nothing on standard output.
expect_fail() {
    local what=$1 want=$2 message=$3
    shift 3
    checks=$((checks + 1))
    run "$@"
    if [ "$code" -ne "$want" ]; then
        fail "$what: exit $code, wanted $want (stderr: $err)"
    elif ! grep -qF -- "$message" "$scratch/err"; then
        fail "$what: stderr lacks '$message': $err"
    elif [ -s "$scratch/out" ]; then
        fail "$what: printed to standard output on failure: $out"
    fi
}

# contains DESCRIPTION TEXT NEEDLE...: every NEEDLE is a fixed substring of TEXT.
contains() {
    local what=$1 text=$2
    shift 2
    local needle
    for needle in "$@"; do
        checks=$((checks + 1))
        grep -qF -- "$needle" <<<"$text" || fail "$what: missing '$needle'"
    done
}

# check MESSAGE COMMAND...: counts one check, failing with MESSAGE unless
# COMMAND succeeds (standard input passes through to COMMAND).
check() {
    local what=$1
    shift
    checks=$((checks + 1))
    "$@" || fail "$what"
}

# element_text NAME TEXT: the text of the first element NAME written on one
# line of TEXT (attributes allowed).
element_text() {
    sed -n "s#.*<$1[^>]*>\(.*\)</$1>.*#\1#p" <<<"$2" | head -n 1
}

finish() {
    echo "$((checks - failures)) passed, $failures failed"
    [ "$failures" -eq 0 ]
}
