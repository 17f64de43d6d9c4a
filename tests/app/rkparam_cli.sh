#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The host program's command line: project creation, refusals and exit statuses.
set -u
rkparam="$1"
shim="$2"  # the file-call fault injector, for LD_PRELOAD
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
. "$(dirname "$0")/checks.sh"

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
# A run holds the project: set waits for nobody and changes nothing, also through a link into
# it from elsewhere, since the lock is taken where the save goes.
mkdir "$work/other" && ln -s ../h2/param.tmp "$work/other/link.tmp"
timeout 20 "$rkparam" "$work/h2" >/dev/null 2>&1 &
run=$!
for _ in $(seq 100); do [ -e "$work/h2/.param.lock" ] && break; sleep 0.1; done
expect_status 2 "set on a project in use" "$rkparam" set "$work/h2" assist.watchdog=40
grep -q 'in use' "$work/err" || fail "the lock is named: $(cat "$work/err")"
expect_status 2 "set through a link into a held project" "$rkparam" set --cpu A3 "$work/other/link.tmp" assist.watchdog=40
grep -q 'h2/.*in use' "$work/err" || fail "the held directory is named: $(cat "$work/err")"
kill "$run"
wait "$run" 2>/dev/null

# import types each value as set does: a text the dialogs or the whole check refuse changes
# nothing and names the line, the key and the reason. Each row: CPU, the sed edit of an
# exported text, what the refusal names.
while IFS='|' read -r cpu edit reason; do
    dir="$work/imp-${cpu// /}"
    [ -d "$dir" ] || { "$rkparam" new --cpu "$cpu" "$dir" >/dev/null
        [ "$cpu" = A3U ] && "$rkparam" set "$dir" mini.modules=1 mini.module.1.start_io=0 >/dev/null
        "$rkparam" export "$dir" -o "$dir.txt"; }
    sed "$edit" "$dir.txt" >"$work/edited.txt"
    cp "$dir/param.tmp" "$work/imp.before"
    expect_status 1 "import refuses: $edit" "$rkparam" import "$dir" "$work/edited.txt"
    grep -q -- "$reason" "$work/err" || fail "import of $edit names: $reason ($(head -3 "$work/err"))"
    cmp -s "$dir/param.tmp" "$work/imp.before" || fail "import of $edit changed param.tmp"
done <<'TABLE'
A3|s/^latch.D.start =.*/latch.D.start = 99999999/|line 33: \[latch\] latch.D.start: 
A3|s/^assist.watchdog =.*/assist.watchdog = 99999/|assist.watchdog: Setting out of range
A3|s/^assist.watchdog =.*/assist.watchdog = +100/|assist.watchdog takes a decimal number
A3|s/^assist.watchdog =.*/assist.watchdog = 0x64/|assist.watchdog takes a decimal number
A3|s/^assist.watchdog =.*/assist.watchdog = ٣٠/|assist.watchdog takes a decimal number
A3|s/^assist.watchdog =.*/assist.watchdog = 10\x000/|control character 0x00
A3|s/^memory.comment =.*/memory.comment =/|memory.comment: Input a value.
A3|s/^latch.C.end =.*/latch.C.end = ]/|latch.C.end takes a decimal number
A3|/^assist.watchdog = /d|assist.watchdog is not given
A3|$a bytes 4294967296..4294967296 = 07 (fields give FF)|expected "bytes FIRST..LAST
A3|$a bytes 3000..3001 = 07 07 (fields give FF FF)\nbytes 3001..3001 = 08 (fields give FF)|overlap or come before bytes 3000..3001
A3|d|the text gives no field
A2C|s/^remote.total =.*/remote.total = 257/|remote.total: Setting out of range
A2C|s/^remote.entry.1.start =.*/remote.entry.1.start = 261/;s/^remote.entry.1.protocol =.*/remote.entry.1.protocol = 0/|remote.entry.1.start: Invalid setting data.
A3U|s/^mini.module.1.model =.*/mini.module.1.model = MINI/;s/^mini.module.1.stations =.*/mini.module.1.stations = 266/|mini.module.1.stations
A3U|s/^mini.module.1.retries =.*/mini.module.1.retries = 64/|mini.module.1.retries
TABLE
# The same edit through set: the whole check, not only the dialogs opened.
"$rkparam" new --cpu A3A "$work/a3a" >/dev/null
expect_status 1 "set refuses what the check then finds" "$rkparam" set "$work/a3a" latch.L.end=2600
grep -q 'assist.step_relay.last: Invalid range.' "$work/err" || fail "set names the finding: $(cat "$work/err")"
# A byte-order mark and CR line ends are taken.
"$rkparam" export "$work/h1" | sed '1s/^/\xEF\xBB\xBF/; s/$/\r/' >"$work/bom.txt"
expect_status 0 "import of a text with a BOM and CRLF" "$rkparam" import "$work/h2" "$work/bom.txt"
# At most 20 messages, then how many more.
yes 'no such line' | head -n 100000 >"$work/flood.txt"
expect_status 1 "import of 100000 bad lines" "$rkparam" import "$work/h2" "$work/flood.txt"
[ "$(wc -l <"$work/err")" -le 22 ] && grep -q 'and 99980 more' "$work/err" || fail "the flood is cut: $(tail -2 "$work/err")"

# Every write replaces only a regular file, also through links; anything else is refused
# naming it, and stays. Each row: what stands at the target, made by a command.
mkdir "$work/targets"
while IFS='|' read -r name make kind; do
    [ "$(id -u)" -ne 0 ] && [[ $make == mknod* ]] && continue
    (cd "$work/targets" && eval "$make")
    expect_status 2 "export -o onto $name" timeout 10 "$rkparam" export "$work/h1" -o "$work/targets/$name"
    grep -q "$kind" "$work/err" || fail "export -o onto $name names $kind: $(cat "$work/err")"
    [ -n "$(find "$work/targets" -maxdepth 1 -name "$name" ! -type f)" ] || fail "$name was replaced"
done <<'TABLE'
fifo|mkfifo fifo|a FIFO
device|mknod device c 1 3|a character device
link-to-fifo|ln -s fifo link-to-fifo|a FIFO
link-to-device|ln -s device link-to-device|a character device
TABLE
"$rkparam" export "$work/h1" -o /dev/stdout 2>"$work/err" | cat >/dev/null
grep -q '"/dev/stdout": it leads to a FIFO.*-o -' "$work/err" || fail "-o /dev/stdout on a pipe: $(cat "$work/err")"
"$rkparam" new --cpu A3 "$work/nl" >/dev/null && rm "$work/nl/param.tmp" && ln -s ../targets/fifo "$work/nl/param.tmp"
expect_status 2 "new --force through a link to a FIFO" timeout 10 "$rkparam" new --force --cpu A3 "$work/nl"
[ -p "$work/targets/fifo" ] || fail "new --force replaced the FIFO"

# The lock file is never followed or waited on; the refusal names it.
for make in "ln -s $work/outside .param.lock" "mkfifo .param.lock"; do
    (cd "$work/h1" && eval "$make")
    expect_status 2 "set with a lock file made by: $make" timeout 10 "$rkparam" set "$work/h1" assist.watchdog=31
    grep -q '.param.lock" is a' "$work/err" || fail "the lock file is named: $(cat "$work/err")"
    rm "$work/h1/.param.lock"
done
[ ! -e "$work/outside" ] || fail "a dangling lock link made a file outside the project"

# set syncs the directory after its rename (a failing sync is a warning naming it) and sweeps
# the temporary file a killed writer left.
: >"$work/h1/.param.tmp.99999.0.part"
expect_status 0 "set with a failing directory sync" faulty EIO fsync h1 "$work/h1" "$rkparam" set "$work/h1" assist.watchdog=32
grep -q 'warning: Cannot sync the directory.*h1' "$work/err" || fail "the failed sync is a warning: $(cat "$work/err")"
[ ! -e "$work/h1/.param.tmp.99999.0.part" ] || fail "set leaves a stale part file"

# Bounded input: a huge note or parameter file and a FIFO or unreadable "program.end" are
# refused at once, naming the file.
"$rkparam" new --cpu A3 "$work/big" >/dev/null && cp -r "$work/big" "$work/big.made"
while IFS='|' read -r what make command named; do
    rm -rf "$work/big" && cp -r "$work/big.made" "$work/big"
    (cd "$work/big" && eval "$make")
    eval "expect_status 2 \"$what\" $command"
    grep -q "$named" "$work/err" || fail "$what names $named: $(cat "$work/err")"
done <<TABLE
a 1 GiB rkparam.cpu|truncate -s 1G rkparam.cpu|timeout 10 $rkparam check $work/big|rkparam.cpu.*holds 1073741824 bytes
a 1 GiB param.tmp|truncate -s 1G param.tmp|timeout 10 $rkparam show $work/big|param.tmp.*holds 1073741824 bytes
a FIFO program.end|mkfifo program.end|timeout 10 $rkparam set $work/big assist.watchdog=30|program.end.*a FIFO
an unreadable program.end|echo 100 >program.end|faulty EIO read program.end $work/big $rkparam set $work/big assist.watchdog=30|program.end.*Input/output error
TABLE
rm -rf "$work/big" && cp -r "$work/big.made" "$work/big"

# Messages: an I/O error on rkparam.cpu names it; a CR line end is taken, other control
# characters are shown escaped; paths that are not UTF-8 are escaped in JSON.
expect_status 2 "an I/O error on rkparam.cpu" faulty EIO "" rkparam.cpu "$work/big" "$rkparam" check "$work/big"
grep -q 'rkparam.cpu.*Input/output error' "$work/err" || fail "the I/O error is named: $(cat "$work/err")"
printf 'A3\r\n' >"$work/big/rkparam.cpu"
expect_status 0 "rkparam.cpu with a CR line end" "$rkparam" check "$work/big"
printf 'A3\033[2J\n' >"$work/big/rkparam.cpu"
expect_status 2 "rkparam.cpu with an escape" "$rkparam" check "$work/big"
grep -q 'unknown CPU type "A3\\x1B\[2J"' "$work/err" || fail "the note is shown escaped: $(cat -v "$work/err")"
bad=$(printf "$work/bad\xff")
"$rkparam" new --cpu A3 "$bad" >/dev/null
expect_status 0 "show --json of a path that is not UTF-8" "$rkparam" show --json "$bad"
grep -q '"file": ".*bad\\\\xFF/param.tmp"' "$work/out" || fail "the path is escaped: $(head -3 "$work/out")"

# No arguments: the start window, which stays until it is closed; without a display, a usage error.
XDG_CONFIG_HOME="$work/config" expect_status 124 "no arguments: the start window" timeout 3 "$rkparam"
expect_status 2 "no arguments, no display" env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$rkparam"
grep -q 'no display' "$work/err" || fail "no display is named: $(cat "$work/err")"
expect_status 2 "unknown option" "$rkparam" --bogus "$work/a/b/proj"

echo "$failures failure(s)"
[ "$failures" -eq 0 ]
