#!/usr/bin/env bash
# `mrp show` beside `mrp run`: once, for people and for programs, and following what changes, a
# restart included, in a pipe and in a terminal.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"
command -v script > /dev/null || skip "no script (package bsdutils)"

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

# terminal: `mrp show --watch` at one of 24 lines of 80 characters, which then says how it ended and
# whether the terminal is as it was. Keys are what is written to the descriptor 9.
terminal() {
   cat > "$work/session" << SESSION
trap : INT # the shell's own
stty rows 24 cols 80
tty > "$work/tty"
before=\$(stty -g)
sh -c 'echo \$\$ > "$work/watch.pid"; exec "$MRP" show --watch'
echo "ended with \$?"
[ "\$before" = "\$(stty -g)" ] && echo as it was
SESSION
   [ -p "$work/keys" ] || mkfifo "$work/keys"
   launch screen sh -c "exec script -q -f -c 'sh $work/session' /dev/null < $work/keys"
   exec 9> "$work/keys"
}
# does COMMAND...: what is seen from then on comes of it.
does() {
   marks[screen]=$(stat -c %s "$work/screen.out")
   "$@"
}
# sees PATTERN...: the terminal has been written each of these, across lines.
has_seen() {
   local pattern
   for pattern; do
      tail -c "+$(( marks[screen] + 1 ))" "$work/screen.out" | tr -d '\r' |
         grep -Pzo -- "$pattern" > /dev/null || return 1
   done
}
sees() {
   until_true has_seen "$@" || fail "the terminal has not been written: $*"
}
terminal_ends() {
   sees '\e\[\?25h\e\[\?1049l' 'ended with 0' 'as it was'
   exec 9>&-
   wait "${pids[screen]}" || true
}

host left right
wire left eth0 right eth0

# Nobody is there.
status=0
"$MRP" show 2> "$work/none.err" || status=$?
[ $status = 2 ] || fail "exit status $status with nothing to show"
grep -q 'no socket is in /run/mrp; .*mrp run --application' "$work/none.err" || fail "no word of it"

# Watching begins before there is anything.
launch lines "$MRP" show --watch --json /run/mrp/mvrp.sock
heard lines '"connected":false,"problem":".*No such file'

run left left --application mvrp --declare 10,20-22 "${long[@]}" eth0
run right right --application mvrp --socket none --declare 20,30-39 "${long[@]}" eth0
shows '' '^MVRP at unix:/run/mrp/mvrp.sock$' '^eth0 +VLAN +4 +11 +0 +300 s$' \
   '^eth0 +10 +QA +MT$' '^eth0 +20 +QA +IN$' '^eth0 +21-22 +QA +MT$' '^eth0 +30-39 +[AV]O +IN$'
shows '--state QA --state IN --interface eth0 --type vlan' '^eth0 +20 +QA +IN$'
[ "$(grep -c '^eth0 .* IN$' "$work/show.out")" = 1 ] || fail "more than was asked for"
heard lines '"key":"39","applicantState":.*"registrar":"IN"'
shows --metrics '^mrp_registrar_attributes\{.*interface="eth0".*state="IN"\} 11$'

# A second one is found too, in one document, which has the same members whatever there is.
run streams left --application msrp "${long[@]}" --listener 02:00:00:00:00:01:00:09 \
   --talker stream=02:00:00:00:00:01:00:07,dest=91:e0:f0:00:00:07,frame-size=100 eth0
shows '' '^MSRP at ' '^MVRP at ' '^eth0 +02:00:00:00:00:01:00:07 +QA +MT +91:e0:f0:00:00:07 ' \
   '^eth0 +02:00:00:00:00:01:00:09 +QA +MT +Asking Failed$'
"$MRP" show --json | python3 -c '
import json, sys
msrp, mvrp = json.load(sys.stdin)["participants"]
with open(sys.argv[1]) as watched:
    nobody = json.loads(watched.readline())["participants"][0]
assert nobody.keys() == msrp.keys() == mvrp.keys()
assert msrp["application"] == "MSRP" and mvrp["config"]["leaveAllTime"] == 300
assert [a["fields"]["vlan"] for a in mvrp["attributes"]] == [10, 20, 21, 22, *range(30, 40)]
assert mvrp["counters"]["numOfPktsProcessed"] > 0
talker, listener, domain, _ = msrp["attributes"]
assert talker["fields"]["maxFrameSize"] == 100
assert domain["fields"] == {"srClass": 5, "priority": 2, "vlan": 2}
assert listener == {
    "interface": "eth0", "attributeType": 3, "key": "144115188075921417",
    "applicantState": "mrpQuietActive", "registrarState": "mrpMt",
    "applicant": "QA", "registrar": "MT", "value": "020000000001000901000000",
    "fields": {"stream": "02:00:00:00:00:01:00:09", "declaration": "askingFailed"}}
' "$work/lines.out" || fail "the document is another"
[ "$("$MRP" show --metrics | grep -c '^# TYPE mrp_frames_received_total ')" = 1 ] ||
   fail "a metric is described twice"
stop streams

# What changes is told to watchers; and that it has gone, and come back as another.
launch text "$MRP" show --watch /run/mrp/mvrp.sock
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
timeout "$patience" "$MRP" show --watch | head -n 1 > "$work/head.out" ||
   fail "without a reader it goes on, or does not end well"
grep -q '^MVRP at' "$work/head.out" || fail "no first line"

# Nor while there is much to read. And of two that speak one protocol it takes a name.
host other
wire other eth0 other eth1
run many other --application mvrp --socket /run/mrp/many.sock --declare 1-4094 "${long[@]}" eth0
shows /run/mrp/many.sock '^eth0 +VLAN +4094 '
timeout "$patience" "$MRP" show --watch --json /run/mrp/many.sock 2> "$work/head.err" |
   head -c 100 > /dev/null || fail "a reader that goes ends it with another status than 0"
[ ! -s "$work/head.err" ] || fail "a reader that goes is an error"
! "$MRP" show --metrics > "$work/two.out" 2>&1 || fail "two series of one name"
grep -q '^mrp: two participants of MVRP: name one SOCKET$' "$work/two.out" || fail "no word of it"
stop many

# At a terminal: too many lines, more room, what is new stands out, a restart, and back.
terminal
sees 'mrp show +[0-9:]+ +unix:/run/mrp/mvrp.sock +connected' '\neth0 +77 +QA +MT'
does stty -F "$(cat "$work/tty")" rows 10 cols 60
sees '\.\.\. 4 more lines below, 0 above'
does printf 'j\033[B' >&9
sees 'flooding' '\.\.\. 2 more lines below, 2 above'
does printf kkkk >&9
sees '\.\.\. 4 more lines below, 0 above'
does printf j >&9
sees '\.\.\. 3 more lines below, 1 above'
does stty -F "$(cat "$work/tty")" rows 24 cols 80
sees 'MVRP at unix:/run/mrp/mvrp.sock'
does stop left KILL || true
sees 'MVRP at unix:[^ ]*: not connected, trying again' 'problem +[a-z]'
does run left left --application mvrp --declare 78 "${long[@]}" eth0
sees '\e\[7meth0 +78 +QA +MT' '\neth0 +78 +QA +MT'
does printf q >&9
terminal_ends

terminal
sees 'eth0 +78'
does printf '\003' >&9
terminal_ends

terminal
sees 'eth0 +78'
does kill "$(cat "$work/watch.pid")"
terminal_ends
