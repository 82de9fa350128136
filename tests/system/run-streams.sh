#!/usr/bin/env bash
# A talker and a listener on a cable, configured by a file and by options; and what keeps the command
# from starting, or ends it.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host talker listener
wire talker eth0 listener eth0
capture talker eth0
stream=02:00:00:00:00:01:00:07

cat > "$work/talker.toml" <<TOML
application = "msrp"
interfaces = ["eth0"]
leave-time = 1
leave-all-time = 2.5
[[talker]]
stream = "$stream"
dest = "91:e0:f0:00:00:07"
frame-size = 100
class = "B"
TOML
run listener listener --application msrp --listener $stream "${short[@]}" eth0
run talker talker --config "$work/talker.toml"
heard listener "join +Talker Advertise $stream .*VLAN 2, frames 100 x 1, priority 2" \
   'join +Domain class A' 'join +Domain class B'
heard talker "join +Listener $stream .*\(Ready\)"

stop talker || fail "SIGTERM does not end the command with 0"
heard listener "leave +Talker Advertise $stream"
run talker talker --config "$work/talker.toml"
heard talker "join +Listener $stream .*\(Ready\)"
stop listener
heard talker "leave +Listener $stream"
stop talker
decode talker eth0 'Multiple Stream Reservation Protocol'
[ ! -e "$work/decoded" ] || grep -q 'Asking Failed' "$work/decoded" || fail "no Asking Failed"

# What keeps it from an interface.
refused talker 'mrp: eth7: no such interface' --application mvrp eth7
if ip -n talker tuntap add tun0 mode tun 2> /dev/null; then
   refused talker 'mrp: tun0: not an Ethernet interface' --application mvrp tun0
fi
unprivileged=( setpriv --bounding-set -net_raw --inh-caps -net_raw )
if "${unprivileged[@]}" true 2> /dev/null; then
   plain=$MRP
   MRP=$work/unprivileged
   printf '#!/bin/sh\nexec %s %s "$@"\n' "${unprivileged[*]}" "$plain" > "$MRP"
   chmod +x "$MRP"
   refused talker 'mrp: eth0: .*CAP_NET_RAW' --application mvrp eth0
   MRP=$plain
fi

# Whoever reads has gone: it withdraws and ends.
{
   status=0
   on listener "$MRP" run --application mvrp --declare 5 "${short[@]}" eth0 2> "$work/pipe.err" ||
      status=$?
   echo $status > "$work/pipe.status"
} | head -n 1 > "$work/pipe.out" &
pids[pipe]=$!
run talker talker --application mvrp --declare 10 "${short[@]}" eth0
heard talker 'join +VLAN 5 '
until_true test -s "$work/pipe.out" || fail "nothing was printed for head"
stop talker
until_true test -s "$work/pipe.status" || fail "it goes on with nobody to read"
[ "$(cat "$work/pipe.status")" = 2 ] || fail "exit status $(cat "$work/pipe.status")"
