#!/usr/bin/env bash
# Traces of a process that runs, switched by SIGUSR2, and logs that go to other places.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

# switched PATTERN: right says it at a signal.
switched() {
   kill -USR2 "${pids[right]}"
   said right "$1"
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
plain=( --application mvrp --socket none "${long[@]}" eth0 )
run right right --config "$work/run.toml"
run left left --declare 10 "${plain[@]}"
heard right 'VLAN 10 '
said right '^Mrp/7 '
! grep '^Mrp/8' "$work/right.err" || fail "traces of a level that nobody wanted"

# Off: what happens leaves no trace.
switched '^mrp: traces are off$'
before=$(grep -c '^Mrp/' "$work/right.err")
stop left
heard right 'leave +VLAN 10$'
[ "$(grep -c '^Mrp/' "$work/right.err")" = "$before" ] || fail "traces go on"

# On, as the file has it by now; and one that is wrong changes nothing.
echo 'trace =' >> "$work/run.toml"
switched '^mrp: warning: traces stay as they are: .*run.toml:6: '
sed -i '$d; s,Mrp/7,Mrp/8,' "$work/run.toml"
switched '^mrp: traces are on: Mrp/8$'
run left left --declare 10 "${plain[@]}"
said right '^Mrp/8 '
stop right || fail "SIGTERM does not end the command with 0"

# Without a setting there are none, and then all; and no logs but errors.
run right right "${plain[@]}"
heard right 'VLAN 10 '
[ ! -s "$work/right.err" ] || fail "there are traces or logs that nobody wanted"
switched '^mrp: traces are on: Mrp/2-8$'
stop right

run right right --log stderr "${plain[@]}"
said right ' MRP_JOIN: MRP Join received on eth0, attrType: 1, key: 10, '
stop right

# Syslog, with a /dev of its own in which somebody listens.
listener='import socket
log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log.bind("/dev/log")
while True:
    print(log.recv(4096).decode().rstrip("\0"), flush=True)'
# shellcheck disable=SC2016
launch right ip netns exec right unshare --mount bash -c 'mount -t tmpfs none /dev
   python3 -c "$0" > "$1/syslog" 2>&1 < "$1/run.toml" &
   until [ -S /dev/log ]; do sleep 0.05; done
   exec "${@:2}"' "$listener" "$work" "$MRP" run --log syslog "${plain[@]}"
# daemon.info
until_true grep -Eqs '^<30>.* mrp\[[0-9]+\]: MRP_JOIN: MRP Join received on eth0, attrType: 1, key: 10, ' \
   "$work/syslog" || fail "no join in the syslog"
[ ! -s "$work/right.err" ] || fail "it is on standard error as well"
