#!/usr/bin/env bash
# `mrp show` beside `mrp run`: once, for people and for programs, and following what changes, a
# restart included, in a pipe and in a terminal.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

# shows 'OPTION...' PATTERN...: `mrp show` has a line of each, or has before long.
shown() {
   local pattern
   # shellcheck disable=SC2086
   "$MRP" show $1 > "$work/show.out" 2> "$work/show.err" || return 1
   for pattern in "${@:2}"; do
      grep -Eq -- "$pattern" "$work/show.out" || return 1
   done
}
shows() {
   until_true shown "$@" || fail "mrp show has not printed: $*"
}
# watch NAME OPTION...: `mrp show --watch` under that name.
watch() {
   local name=$1
   shift
   "$MRP" show --watch "$@" > "$work/$name.out" 2> "$work/$name.err" &
   pids[$name]=$!
   marks[$name]=0
}
# terminal: `mrp show --watch` at one, by the script on standard input.
terminal() {
   cat > "$work/script"
   python3 "$MRP_SOURCE_DIR/tests/system/terminal.py" "$work/script" "$MRP" show --watch \
      2> "$work/terminal.err" || fail "not at a terminal"
}

host left right
wire left eth0 right eth0

# Nobody is there.
status=0
"$MRP" show 2> "$work/none.err" || status=$?
[ $status = 2 ] || fail "exit status $status with nothing to show"
grep -q 'no socket is in /run/mrp; .*mrp run --application' "$work/none.err" || fail "no word of it"
status=0
"$MRP" show tcp:nowhere:7000 2> "$work/none.err" || status=$?
[ $status = 2 ] || fail "exit status $status for an address that cannot be one"
grep -q "tcp:nowhere:7000: 'nowhere' is no IPv4 address" "$work/none.err" || fail "no word of it"

# Watching begins before there is anything.
watch lines --json /run/mrp/mvrp.sock
heard lines '"connected":false,"problem":".*No such file'

run left left --application mvrp --declare 10,20-22 "${long[@]}" eth0
run right right --application mvrp --socket none --declare 20,30-39 "${long[@]}" eth0
shows '' '^MVRP at unix:/run/mrp/mvrp.sock$' '^eth0 +VLAN +4 +11 +0 +300 s$' \
   '^eth0 +10 +QA +MT$' '^eth0 +20 +QA +IN$' '^eth0 +21-22 +QA +MT$' '^eth0 +30-39 +[AV]O +IN$'
shows '--state QA --state IN --interface eth0 --type vlan' '^eth0 +20 +QA +IN$'
[ "$(grep -c '^eth0 .* IN$' "$work/show.out")" = 1 ] || fail "more than was asked for"
heard lines '"key":"39","applicantState":.*"registrar":"IN"'
shows --metrics '^mrp_registrar_attributes\{.*interface="eth0".*state="IN"\} 11$'

# A second one is found too, in one document; filters hold for both.
run streams left --application msrp "${long[@]}" eth0 \
   --talker stream=02:00:00:00:00:01:00:07,dest=91:e0:f0:00:00:07,frame-size=100
shows '' '^MSRP at ' '^MVRP at ' '^eth0 +02:00:00:00:00:01:00:07 +QA +MT +91:e0:f0:00:00:07 '
"$MRP" show --json | python3 -c '
import json, sys
msrp, mvrp = json.load(sys.stdin)["participants"]
assert msrp["application"] == "MSRP" and mvrp["application"] == "MVRP"
assert [a["fields"]["vlan"] for a in mvrp["attributes"]] == [10, 20, 21, 22, *range(30, 40)]
assert msrp["attributes"][0]["fields"]["maxFrameSize"] == 100
assert mvrp["counters"]["numOfPktsProcessed"] > 0' || fail "the document is another"
[ "$("$MRP" show --metrics | grep -c '^# TYPE mrp_frames_received_total ')" = 1 ] ||
   fail "a metric is described twice"
stop streams

# What changes is told to watchers; and that it has gone, and come back as another.
watch text /run/mrp/mvrp.sock
heard text '^eth0 +30-39 '
stop right
heard text '^eth0 +20 +QA +MT$|^eth0 +20-22 +QA +MT$|^eth0 +10 '
stop left KILL || true
heard text '^MVRP at .*: not connected, trying again$' '^problem +.*' '^eth0 +10 +QA +MT$'
run left left --application mvrp --declare 77 "${long[@]}" eth0
heard text '^eth0 +77 +QA +MT$'
[ "$(tail -n 1 "$work/text.out" | tr -s ' ')" = "eth0 77 QA MT" ] || fail "old rows have stayed"
heard lines '"connected":false' '"key":"77"'
stop text || fail "SIGTERM does not end a watch with 0"
stop lines INT || fail "SIGINT does not end a watch with 0"

# Nobody reads any more, and nothing changes.
timeout "$patience" "$MRP" show --watch | head -n 1 > "$work/head.out"
[ "${PIPESTATUS[0]}" != 124 ] || fail "it goes on without a reader"
grep -q '^MVRP at' "$work/head.out" || fail "no first line"

disown "${pids[left]}" # that a shell says nothing when it is killed
# At a terminal: too many lines, more room, what is new stands out, a restart, and back.
terminal << SCRIPT
expect mrp show +[0-9:]+ +unix:/run/mrp/mvrp.sock +connected
expect \r\neth0 +77 +QA +MT
size 10 60
expect \.\.\. 4 more lines below, 0 above
type j\x1b[B
expect flooding.*\.\.\. 2 more lines below, 2 above
type kkkk
expect \.\.\. 4 more lines below, 0 above
type j
expect \.\.\. 3 more lines below, 1 above
size 24 80
expect \x1b\[H.*MVRP at unix:/run/mrp/mvrp.sock
run kill -KILL ${pids[left]}
expect MVRP at unix:[^ ]*: not connected, trying again.*problem +[a-z]
run ip netns exec left $MRP run --application mvrp --declare 78 ${long[*]} eth0 > /dev/null 2>&1 &
expect \x1b\[7meth0 +78 +QA +MT
expect \r\neth0 +78 +QA +MT
type q
ends
SCRIPT
for signal in SIGINT SIGTERM; do
   terminal << SCRIPT
expect eth0 +78
signal $signal
ends
SCRIPT
done
