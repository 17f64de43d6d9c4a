# SPDX-License-Identifier: Apache-2.0
# What the command-line tests share, sourced after $work is made: a failure count and a check
# of a command's exit status that shows what it printed.
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_status() {  # expected, description, command...
    local expected=$1 what=$2; shift 2
    "$@" >"$work/out" 2>"$work/err"
    local status=$?
    [ "$status" -eq "$expected" ] || fail "$what: status $status, expected $expected ($(cat "$work/out" "$work/err"))"
}
