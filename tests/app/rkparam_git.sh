#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Parameter files under version control: rkparam git-setup, git merge through the merge
# driver, git diff through the diff command, merge's refusals, and check for pipelines (several
# projects, --recursive, JUnit read back by xmllint).
set -u
rkparam=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
. "$(dirname "$0")/checks.sh"
export GIT_CONFIG_NOSYSTEM=1 HOME="$work" GIT_AUTHOR_NAME=t GIT_AUTHOR_EMAIL=t@t \
    GIT_COMMITTER_NAME=t GIT_COMMITTER_EMAIL=t@t

# A repository with one project; the set-up written twice changes nothing the second time.
repo="$work/plant"
git init -q -b main "$repo" && cd "$repo" || exit 1
"$rkparam" new --cpu A3 line1 >/dev/null
expect_status 0 "git-setup" "$rkparam" git-setup
cp .git/config "$work/config" && cp .gitattributes "$work/attributes"
expect_status 0 "git-setup again" "$rkparam" git-setup "$repo/line1"
cmp -s .git/config "$work/config" && cmp -s .gitattributes "$work/attributes" \
    || fail "a second git-setup changed the set-up: $(diff .git/config "$work/config")"
[ "$(grep -c 'param.tmp merge=rkparam diff=rkparam' .gitattributes)" = 1 ] || fail "the attributes line once"
git config merge.rkparam.driver | grep -q "merge %O %A %B --path %P" || fail "the merge driver is set"
# Where the search path finds this rkparam, the set-up names it as the documented lines do.
mkdir "$work/bin" && ln -s "$rkparam" "$work/bin/rkparam"
git init -q "$work/other" && PATH="$work/bin:$PATH" rkparam git-setup "$work/other" >/dev/null
[ "$(git -C "$work/other" config merge.rkparam.driver)" = "rkparam merge %O %A %B --path %P" ] \
    && [ "$(git -C "$work/other" config diff.rkparam.command)" = "rkparam git-diff" ] \
    || fail "the set-up by a program on the search path: $(git -C "$work/other" config -l --local)"
git add -A && git commit -qm base

# Two branches change different dialogs: git merges them field by field.
git checkout -qb watchdog && "$rkparam" set line1 assist.watchdog=30 >/dev/null && git commit -qam w30
git checkout -q main && "$rkparam" set line1 latch.L.start=1024 >/dev/null && git commit -qam l1024
expect_status 0 "git merge of different dialogs" git merge --no-edit watchdog
expect_status 0 "check of the merged file" "$rkparam" check line1
"$rkparam" show line1 | grep -q '^assist.watchdog = 30$' && "$rkparam" show line1 | grep -q '^latch.L.start = 1024$' \
    || fail "the merge has both changes: $(cat "$work/out")"

# One field changed differently: a conflict, and the file as it was on the current branch.
git checkout -qb other && "$rkparam" set line1 assist.watchdog=40 >/dev/null && git commit -qam w40
git checkout -q main && "$rkparam" set line1 assist.watchdog=50 >/dev/null && git commit -qam w50
cp line1/param.tmp "$work/main.tmp"
expect_status 1 "git merge of one field changed differently" git merge --no-edit other
grep -q 'assist.watchdog: base 30, ours 50, theirs 40' "$work/err" || fail "the conflict is named: $(cat "$work/err")"
[ "$(git diff --name-only --diff-filter=U)" = line1/param.tmp ] || fail "git reports the conflict on param.tmp"
cmp -s line1/param.tmp "$work/main.tmp" || fail "the conflicted file is the current branch's"
git merge --abort

# git diff shows the field lines.
"$rkparam" set line1 assist.watchdog=60 >/dev/null
git diff >"$work/diff"
grep -q '^assist.watchdog: 50 => 60$' "$work/diff" || fail "git diff shows the field: $(cat "$work/diff")"
git checkout -q line1/param.tmp

# merge by itself: each row, the sides (base ours theirs), the options, the status and what
# the message names. A3 and A3U images are made here; OURS must stay as it was unless merged.
mkdir "$work/m" && cd "$work/m" || exit 1
"$rkparam" new --cpu A3 a3 >/dev/null && "$rkparam" new --cpu A3U a3u >/dev/null
for f in base w30 w40 l1024; do cp a3/param.tmp $f.tmp; done
"$rkparam" set --cpu A3 w30.tmp assist.watchdog=30 >/dev/null
"$rkparam" set --cpu A3 w40.tmp assist.watchdog=40 >/dev/null
"$rkparam" set --cpu A3 l1024.tmp latch.L.start=1024 >/dev/null
head -c 100 /dev/zero >short.tmp && : >empty.tmp
while IFS='|' read -r status sides options named; do
    cp w30.tmp ours.tmp
    eval "expect_status $status \"merge $sides $options\" \"$rkparam\" merge $sides $options"
    grep -q -- "$named" "$work/out" "$work/err" || fail "merge $sides $options names $named: $(cat "$work/err")"
    if [ "$status" -ne 0 ]; then cmp -s ours.tmp w30.tmp || fail "merge $sides $options changed OURS"; fi
done <<'TABLE'
0|base.tmp ours.tmp l1024.tmp|--cpu A3 -o out.tmp|merged out.tmp
1|base.tmp ours.tmp w40.tmp|--path a3/param.tmp|assist.watchdog: base 20, ours 30, theirs 40
2|base.tmp ours.tmp a3u/param.tmp|--cpu A3|THEIRS "a3u/param.tmp": its check bytes are those of an A2U, A3U or A4U
2|base.tmp ours.tmp a3u|--cpu A3|"a3u" is a project of CPU type "A3U"
2|short.tmp ours.tmp w40.tmp|--cpu A3|short.tmp" holds 100 bytes
2|base.tmp ours.tmp w40.tmp||no CPU type
2|base.tmp ours.tmp nothing.tmp|--cpu A3|nothing.tmp" does not exist
0|empty.tmp ours.tmp base.tmp|--path a3/param.tmp|merged a3/param.tmp
TABLE
"$rkparam" show --cpu A3 out.tmp >"$work/out"
grep -q '^assist.watchdog = 30$' "$work/out" && grep -q '^latch.L.start = 1024$' "$work/out" || fail "-o writes the merge"
expect_status 0 "merge into a project" "$rkparam" merge base.tmp a3 w40.tmp
"$rkparam" show a3 | grep -q '^assist.watchdog = 40$' || fail "the project holds the merge"

# check for pipelines: every project under a directory, one finding each but the first.
mkdir -p "$work/farm/hall/.git" && cd "$work/farm" || exit 1
for p in pass end bytes short nocpu hall/.git/hidden; do "$rkparam" new --cpu A3 "$p" >/dev/null; done
echo '7000 0 0 0' >end/program.end
printf '\x00' | dd of=bytes/param.tmp bs=1 seek=526 conv=notrunc 2>/dev/null
head -c 100 /dev/zero >short/param.tmp
rm nocpu/rkparam.cpu
# Projects of other CPU types pass only when each is checked as its own type.
for c in A0J A3U A2A; do "$rkparam" new --cpu $c "types/$c" >/dev/null; done
# Neither a link loop nor a FIFO in a project's place holds the walk up.
mkdir -p loop fifo && ln -s .. loop/up && mkfifo fifo/param.tmp && echo A3 >fifo/rkparam.cpu
expect_status 1 "check --recursive" timeout 20 "$rkparam" check --recursive .
grep -q '9 project(s) checked: 4 pass, 5 with 5 problem(s)' "$work/out" || fail "the summary: $(cat "$work/out")"
grep -q '^./end/param.tmp: \[menu\] memory.main: ' "$work/out" || fail "a finding names its project: $(cat "$work/out")"
expect_status 1 "check --format junit" "$rkparam" check --recursive . --format junit
xml="$work/out"
xmllint --noout "$xml" || fail "the JUnit output is XML"
[ "$(xmllint --xpath 'count(//testsuite)' "$xml")" = 9 ] || fail "one test suite a project"
[ "$(xmllint --xpath 'count(//testcase[failure])' "$xml")" = 5 ] || fail "one failing case a finding"
[ "$(xmllint --xpath 'count(//testsuite[@name="./pass/param.tmp"]/testcase[not(failure)])' "$xml")" = 8 ] \
    || fail "a passing case for each dialog, the menu and the file"
[ "$(xmllint --xpath 'string(//testsuite[@name="./end/param.tmp"]//failure/@type)' "$xml")" = "message 9" ] \
    || fail "a finding's failure has the dialog's message number as its type"
xmllint --xpath 'string(//testsuite[@name="./nocpu/param.tmp"]//failure/@message)' "$xml" | grep -q 'no CPU type' \
    || fail "the unreadable project's failure says why"
expect_status 1 "check --format json" "$rkparam" check --recursive . --format json
grep -q '"failed": 5' "$work/out" || fail "json counts the failed projects"
expect_status 0 "check of two paths, one of them twice" "$rkparam" check pass pass/param.tmp hall/.git/hidden
grep -q '2 project(s) checked: 2 pass' "$work/out" || fail "each project once: $(cat "$work/out")"
expect_status 2 "check of a missing directory" "$rkparam" check --recursive nothing
expect_status 2 "check of a directory without projects" "$rkparam" check --recursive hall
expect_status 2 "check in an unknown format" "$rkparam" check pass --format xml

echo "$failures failure(s)"
[ "$failures" -eq 0 ]
