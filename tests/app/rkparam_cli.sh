#!/usr/bin/env bash
# The host program's command line: project creation, refusals and exit statuses.
set -u
rkparam="$1"
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect_status() {  # expected, description, command...
    local expected=$1 what=$2; shift 2
    "$@" >"$work/out" 2>"$work/err"
    local status=$?
    [ "$status" -eq "$expected" ] || fail "$what: status $status, expected $expected ($(cat "$work/err"))"
}

expect_status 0 "new A3U" "$rkparam" new --cpu A3U "$work/a/b/proj"
[ "$(stat -c %s "$work/a/b/proj/param.tmp")" = 3072 ] || fail "new writes 3072 bytes"

expect_status 2 "new refuses to overwrite" "$rkparam" new --cpu A3U "$work/a/b/proj"
grep -q -- "--force" "$work/err" || fail "the refusal names --force"
expect_status 0 "new --force overwrites" "$rkparam" new --cpu A1 --force "$work/a/b/proj"
grep -q 'A1 ' "$work/a/b/proj/rkparam.cpu" || fail "A1 is kept with its trailing blank"

expect_status 2 "unknown CPU" "$rkparam" new --cpu A5X "$work/unknown"
[ ! -e "$work/unknown" ] || fail "an unknown CPU leaves no directory behind"
grep -q 'A5X' "$work/err" || fail "the unknown CPU is named"

touch "$work/afile"
expect_status 2 "a file as project path" "$rkparam" new --cpu A3 "$work/afile/proj"
grep -q 'afile' "$work/err" || fail "the file in the way is named"

mkdir "$work/locked" && chmod 555 "$work/locked"
if [ "$(id -u)" -ne 0 ]; then
    expect_status 2 "unwritable directory" "$rkparam" new --cpu A3 "$work/locked/proj"
    [ ! -e "$work/locked/proj" ] || fail "nothing is left in an unwritable directory"
fi

expect_status 2 "run on a missing directory" "$rkparam" --cpu A3 "$work/nothing"
grep -q 'nothing' "$work/err" || fail "the missing directory is named"
mkdir "$work/empty"
expect_status 2 "run without param.tmp" "$rkparam" --cpu A3 "$work/empty"
grep -q 'param.tmp' "$work/err" || fail "the missing param.tmp is named"
head -c 100 /dev/zero >"$work/empty/param.tmp"
expect_status 2 "run on a short param.tmp" "$rkparam" --cpu A3 "$work/empty"
grep -q '100 bytes' "$work/err" || fail "the wrong size is given"
[ "$(stat -c %s "$work/empty/param.tmp")" = 100 ] || fail "a refused project is not touched"
[ ! -e "$work/empty/param.\$\$\$" ] || fail "a refused run makes no working file"

# -v prints what the host window receives: the menu's activation sends WM_COMMAND 60000 with
# the address of a zero. Nobody answers the menu here, so the run is stopped once it printed.
"$rkparam" new --cpu A2U "$work/verbose" >/dev/null
"$rkparam" -v "$work/verbose" >"$work/out" 2>"$work/err" &
run=$!
for _ in $(seq 100); do grep -q '(sent)' "$work/out" && break; sleep 0.1; done
kill "$run" 2>/dev/null || fail "-v run: the menu should still be waiting ($(cat "$work/err"))"
wait "$run" 2>/dev/null
grep -q 'msg=0x111 wParam=60000 lParam=&0 (sent)' "$work/out" \
    || fail "-v prints the activation notification (CPU type read from rkparam.cpu): $(cat "$work/out")"

expect_status 2 "no arguments" "$rkparam"
expect_status 2 "unknown option" "$rkparam" --bogus "$work/a/b/proj"

echo "$failures failure(s)"
[ "$failures" -eq 0 ]
