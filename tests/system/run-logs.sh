#!/usr/bin/env bash
# Traces of a process that runs, switched by SIGUSR2, and logs that go to syslog.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

# said PATTERN: right says it on standard error before long.
said() {
   until_true grep -Eq -- "$1" "$work/right.err" || fail "right has not said: $1"
}
# traces: how many lines of traces right has written.
traces() {
   grep -c '^Mrp/' "$work/right.err" || true
}

host left right
wire left eth0 right eth0
cat > "$work/run.toml" << 'TOML'
application = "mvrp"
interfaces = "eth0"
leave-all-time = 300
socket = "none"
trace = "Mrp/7"
TOML
run right right --config "$work/run.toml"
run left left --application mvrp --socket none --declare 10 "${long[@]}" eth0
heard right 'VLAN 10 '
said '^Mrp/7 '
! grep '^Mrp/8' "$work/right.err" || fail "traces of a level that nobody wanted"

# Off: what happens leaves no trace.
kill -USR2 "${pids[right]}"
said '^mrp: traces are off$'
before=$(traces)
stop left
heard right 'leave +VLAN 10$'
[ "$(traces)" = "$before" ] || fail "traces go on"

# On, as the file has it by now; and a file that is wrong by now changes nothing.
sed -i 's,Mrp/7,Mrp/8,' "$work/run.toml"
kill -USR2 "${pids[right]}"
said '^mrp: traces are on: Mrp/8$'
run left left --application mvrp --socket none --declare 10 "${long[@]}" eth0
said '^Mrp/8 '
kill -USR2 "${pids[right]}"
said_off_twice() {
   [ "$(grep -c '^mrp: traces are off$' "$work/right.err")" = 2 ]
}
until_true said_off_twice || fail "the traces do not go off again"
echo 'trace =' >> "$work/run.toml"
kill -USR2 "${pids[right]}"
said '^mrp: warning: traces stay as they are: .*run.toml:6: '
sed -i '$d; s,Mrp/8,Mrp/all,' "$work/run.toml"
kill -USR2 "${pids[right]}"
said '^mrp: warning: traces stay as they are: trace: .*all'
stop right || fail "SIGTERM does not end the command with 0"

# Without a setting there are none, and then all.
run right right --application mvrp --socket none "${long[@]}" eth0
heard right 'VLAN 10 '
[ ! -s "$work/right.err" ] || fail "there are traces that nobody wanted"
kill -USR2 "${pids[right]}"
said '^mrp: traces are on: Mrp/2-8$'
stop right
stop left

# Syslog, with a /dev of its own in which somebody listens.
cat > "$work/syslog.py" << 'PYTHON'
import socket
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind("/dev/log")
print("bound", flush=True)
while True:
    print(log.recv(4096).decode().rstrip("\0"), flush=True)
PYTHON
# shellcheck disable=SC2016
ip netns exec right unshare --mount bash -c 'mount -t tmpfs none /dev
   python3 "$0/syslog.py" > "$0/syslog" 2>&1 < "$0/run.toml" & log=$!
   until grep -qs bound "$0/syslog"; do sleep 0.05; done
   "$@"
   kill $log' "$work" "$MRP" run --log syslog --application mvrp --socket none "${long[@]}" eth0 \
   > "$work/right.out" 2> "$work/right.err" &
pids[right]=$!
marks[right]=0
run left left --application mvrp --socket none --declare 10 "${long[@]}" eth0
# daemon.info
until_true grep -Eqs '^<30>.* mrp\[[0-9]+\]: MRP_JOIN: MRP Join received on eth0, attrType: 1, key: 10, ' \
   "$work/syslog" || fail "no join in the syslog"
[ ! -s "$work/right.err" ] || fail "it is on standard error as well"
stop left
until_true grep -Eq ': MRP_LV: MRP Lv notified on eth0, attrType: 1, key: 10, ' "$work/syslog" ||
   fail "no leave in the syslog"
