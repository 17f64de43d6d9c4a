#!/usr/bin/env bash
# The host program's command line: project creation, refusals and exit statuses.
set -u
rkparam="$1"
shim="$2"  # the file-call fault injector, for LD_PRELOAD
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

# "new" writes "rkparam.cpu" with "param.tmp", all or none: a full disk at the note fails.
faulty() {  # errno, operation, name, directory, command...: the first matching call fails
    local error=$1 op=$2 name=$3 dir=$4
    shift 4
    # The injector comes first in the process; a sanitizer build has to be told that is fine.
    LD_PRELOAD="$shim" ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0" \
        GANTRIX_FAULT_DIR="$dir" GANTRIX_FAULT_AT=1 GANTRIX_FAULT_ERRNO="$error" \
        GANTRIX_FAULT_OP="$op" GANTRIX_FAULT_NAME="$name" "$@"
}
expect_status 2 "new on a disk full at rkparam.cpu" \
    faulty ENOSPC write rkparam.cpu "$work/full" "$rkparam" new --cpu A3 "$work/full/proj"
grep -q 'rkparam.cpu.*No space left' "$work/err" || fail "the full disk names rkparam.cpu: $(cat "$work/err")"
[ ! -e "$work/full" ] || fail "a failed new leaves nothing behind: $(ls -A "$work/full")"

# A FIFO named "rkparam.cpu" is refused, not waited on.
"$rkparam" new --cpu A3 "$work/fifo" >/dev/null
rm "$work/fifo/rkparam.cpu" && mkfifo "$work/fifo/rkparam.cpu"
expect_status 2 "a run with a FIFO as rkparam.cpu" timeout 10 "$rkparam" "$work/fifo"
grep -q 'rkparam.cpu.*not a regular file' "$work/err" || fail "the FIFO is named: $(cat "$work/err")"
expect_status 2 "new --force over a FIFO" timeout 10 "$rkparam" new --force --cpu A3 "$work/fifo"
[ -p "$work/fifo/rkparam.cpu" ] || fail "the refused new leaves the FIFO as it was"

# Without a display: check, set, diff, export and import on a project.
"$rkparam" new --cpu A3 "$work/h1" >/dev/null
expect_status 0 "check of a new project" "$rkparam" check "$work/h1"
cp "$work/h1/param.tmp" "$work/h1.before"
expect_status 1 "set refuses a watchdog of 201" "$rkparam" set "$work/h1" assist.watchdog=201
grep -q 'assist.watchdog: Setting out of range' "$work/err" || fail "the refusal names the field and message: $(cat "$work/err")"
cmp -s "$work/h1/param.tmp" "$work/h1.before" || fail "a refused set leaves param.tmp as it was"
expect_status 1 "set refuses an unknown key" "$rkparam" set "$work/h1" assist.nothing=1
expect_status 0 "set a watchdog of 30" "$rkparam" set "$work/h1" assist.watchdog=30
expect_status 0 "check after set" "$rkparam" check "$work/h1"
expect_status 1 "diff of changed projects" "$rkparam" diff "$work/h1.before" "$work/h1" --cpu A3
grep -q 'assist.watchdog: 20 => 30' "$work/out" || fail "diff shows both values: $(cat "$work/out")"
expect_status 0 "export" "$rkparam" export "$work/h1" -o "$work/h1.txt"
"$rkparam" new --cpu A3 "$work/h2" >/dev/null
expect_status 0 "import" "$rkparam" import "$work/h2" "$work/h1.txt"
cmp -s "$work/h1/param.tmp" "$work/h2/param.tmp" || fail "import makes the exported file again"
expect_status 0 "diff of equal projects" "$rkparam" diff "$work/h1" "$work/h2"
head -c 100 /dev/zero >"$work/short.tmp"
expect_status 1 "check of a short file" "$rkparam" check --cpu A3 "$work/short.tmp"
grep -q '100 bytes' "$work/out" || fail "check names the size: $(cat "$work/out")"
expect_status 2 "show without a CPU type" "$rkparam" show "$work/short.tmp"
"$rkparam" show --json "$work/h1" >"$work/h1.json" && grep -q '"assist.watchdog": "30"' "$work/h1.json" \
    || fail "show --json gives the fields: $(head -c 300 "$work/h1.json")"
# A run holds the project: set waits for nobody and changes nothing.
timeout 5 "$rkparam" "$work/h2" >/dev/null 2>&1 &
sleep 2
expect_status 2 "set on a project in use" "$rkparam" set "$work/h2" assist.watchdog=40
grep -q 'in use' "$work/err" || fail "the lock is named: $(cat "$work/err")"
wait

# No arguments: the start window, which stays until it is closed; without a display, a usage error.
XDG_CONFIG_HOME="$work/config" expect_status 124 "no arguments: the start window" timeout 3 "$rkparam"
expect_status 2 "no arguments, no display" env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$rkparam"
grep -q 'no display' "$work/err" || fail "no display is named: $(cat "$work/err")"
expect_status 2 "unknown option" "$rkparam" --bogus "$work/a/b/proj"

echo "$failures failure(s)"
[ "$failures" -eq 0 ]
