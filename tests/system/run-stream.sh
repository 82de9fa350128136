#!/usr/bin/env bash
# The mirror stream of `mrp run`, read by an observer that knows nothing but docs/mirror-stream.md;
# and the place where it is offered: who may come near it, and who has it when two want it.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

observer=( python3 "$MRP_SOURCE_DIR/examples/observer.py" )
is_socket() {
   [ -S "$1" ]
}

host left right
wire left eth0 right eth0
usual=/run/mrp/mvrp.sock

# Whatever the umask. An observer that comes early sees all that comes.
umask 0
run right right --application mvrp "${long[@]}" eth0
umask 022
until_true is_socket $usual || fail "no socket at the usual place"
[ "$(stat -c %a /run/mrp $usual | xargs)" = "700 600" ] || fail "others may come near the stream"
launch early "${observer[@]}" $usual

# A second one finds the usual place taken. That costs it the stream and a warning.
run left left --application mvrp --declare 10,20-21 "${long[@]}" eth0
heard early '^\+ eth0 type 1 key 10 .. IN$' 'key 20 .. IN$' 'key 21 .. IN$'
said left 'warning: no mirror stream: unix:/run/mrp/mvrp.sock: it is taken \(--socket'

# One that comes late has the same picture. Both see what goes.
launch late "${observer[@]}" $usual
heard late '^\+ eth0 type 1 key 10 .. IN$' 'key 20 .. IN$' 'key 21 .. IN$'
stop left
heard early '^- eth0 type 1 key 10 .. LV$'
heard late '^- eth0 type 1 key 10 .. LV$'

# A place that was asked for has to be free.
echo kept > "$work/file"
for place in $usual "$work/file"; do
   refused left "mrp: socket: unix:$place: it is taken" --application mvrp eth0 --socket "$place"
done
[ "$(cat "$work/file")" = kept ] || fail "a file that is no socket is gone"
refused left "mrp: socket: unix:$work/none/at: .*No such file" --application mvrp eth0 \
   --socket "unix:$work/none/at"

# What a killed one leaves behind the next one takes; one that is stopped leaves nothing, not even
# one that is told again and again.
stop right KILL && fail "SIGKILL is survived"
heard early '^end$'
is_socket $usual || fail "the socket went by itself"
run right right --application mvrp "${long[@]}" eth0
until_true "$MRP" show $usual > /dev/null 2>&1 || fail "the abandoned socket was not taken over"
[ ! -s "$work/right.err" ] || fail "something is said about it"
stop right || fail "SIGTERM does not end the command with 0"
[ ! -e $usual ] || fail "the socket is left behind"
run right right --application mvrp "${long[@]}" eth0
until_true is_socket $usual || fail "no socket at the usual place"
while kill "${pids[right]}" 2> /dev/null; do :; done
[ ! -e $usual ] || fail "the socket is left behind by a second signal"

# A place of its own, or none.
run left left --application mvrp --socket "$work/own" --declare 10 "${long[@]}" eth0
run right right --application mvrp --socket none "${long[@]}" eth0
heard right 'VLAN 10 '
is_socket "$work/own" || fail "no socket at the place that was asked for"
[ -z "$(ls -A /run/mrp)" ] || fail "there is a stream that nobody wanted"
stop left
stop right
