#!/usr/bin/env bash
# Three hosts in a row, the one in the middle a bridge: what one end declares the other registers.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host left bridge right
wire left eth0 bridge p0
wire right eth0 bridge p1
capture right eth0

run bridge bridge --application mvrp --bridge "${short[@]}" p0 p1
run left left --application mvrp --declare 10,20-29 "${short[@]}" eth0
run right right --application mvrp --declare 10,40 "${short[@]}" eth0
heard right 5 'join +VLAN 10 ' 'join +VLAN 20 ' 'join +VLAN 29 '
heard left 5 'join +VLAN 10 ' 'join +VLAN 40 '
silent left 'VLAN 20 '

# Withdrawn, and killed: the other end hears of it through the bridge.
stop left
heard right 3 'leave +VLAN 10$' 'leave +VLAN 20$' 'leave +VLAN 29$'
run left left --application mvrp --declare 10 "${short[@]}" eth0
heard right 5 'join +VLAN 10 '
stop left KILL && fail "SIGKILL is survived"
heard right 6 'leave +VLAN 10$'

# A port that loses its link takes its registrations along.
run left left --application mvrp --declare 10 "${short[@]}" eth0
heard right 5 'join +VLAN 10 '
ip -n left link set eth0 down
heard bridge 2 'p0 +leave +VLAN 10$'
heard right 3 'leave +VLAN 10$'
ip -n left link set eth0 up
heard right 5 'join +VLAN 10 '

# The bridge goes, and both ends are alone.
stop bridge || fail "the bridge does not end with 0"
heard right 3 'leave +VLAN 10$'
heard left 3 'leave +VLAN 40$'
decode right eth0 'Multiple VLAN Registration Protocol'

# On ports of a kernel's bridge, only those that forward.
port_is() {
   on bridge bridge link show dev p1 | grep -q "state $1"
}
if ip -n bridge link add br0 type bridge stp_state 0 2> /dev/null; then
   ip -n bridge link set br0 up
   ip -n bridge link set p0 master br0
   ip -n bridge link set p1 master br0
   # The kernel lets a port forward some time after its link has come up.
   until_true 5 port_is forwarding || fail "p1 does not forward"
   # Learning: without a spanning tree of its own it knows no blocking.
   on bridge bridge link set dev p1 state 2
   port_is learning || fail "p1 forwards all the same"
   run bridge bridge --application mvrp --bridge "${short[@]}" p0 p1
   heard bridge 5 'p0 +join +VLAN 10 ' 'p1 +join +VLAN 40 '
   kill -USR1 "${pids[bridge]}"
   heard bridge 5 'p1 +VLAN +40 .* IN( |$)'
   silent right 'join'
   on bridge bridge link set dev p1 state 3
   heard right 5 'join +VLAN 10 '
   on bridge bridge link set dev p1 state 2
   heard right 5 'leave +VLAN 10$'
   stop bridge
else
   echo "no bridges in this kernel: their states were not tried"
fi
