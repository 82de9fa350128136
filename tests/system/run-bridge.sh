#!/usr/bin/env bash
# Three hosts in a row, the one in the middle a bridge: what one end declares the other registers,
# as long as the ports of the bridge have a link and forward.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host left bridge right
wire left eth0 bridge p0
wire right eth0 bridge p1
capture right eth0

run bridge bridge --application mvrp --bridge "${short[@]}" p0 p1
run left left --application mvrp --declare 10,20-29 "${short[@]}" eth0
run right right --application mvrp --declare 10,40 "${short[@]}" eth0
heard right 'join +VLAN 10 ' 'join +VLAN 20 ' 'join +VLAN 29 '
heard left 'join +VLAN 10 ' 'join +VLAN 40 '
silent left 'VLAN 20 '

# A port that loses its link takes its registrations along.
ip -n left link set eth0 down
heard bridge 'p0 +leave +VLAN 10$'
heard right 'leave +VLAN 10$' 'leave +VLAN 29$'
ip -n left link set eth0 up
heard right 'join +VLAN 10 '

# The bridge goes, and both ends are alone.
stop bridge || fail "the bridge does not end with 0"
heard right 'leave +VLAN 10$'
heard left 'leave +VLAN 40$'
decode right eth0 'Multiple VLAN Registration Protocol'

# On ports of a kernel's bridge, only those that forward. Nobody speaks while the kernel forwards:
# it would carry the frames past the command.
stop left
stop right
port_is() {
   on bridge bridge link show dev p1 | grep "state $1" > /dev/null
}
if ! ip -n bridge link add br0 type bridge stp_state 0 2> /dev/null; then
   echo "no bridges in this kernel: their states were not tried"
   exit 0
fi
ip -n bridge link set br0 up
ip -n bridge link set p0 master br0
ip -n bridge link set p1 master br0
# The kernel lets a port forward some time after its link has come up.
until_true port_is forwarding || fail "p1 does not forward"
# Learning: without a spanning tree of its own it knows no blocking.
on bridge bridge link set dev p1 state 2
port_is learning || fail "p1 forwards all the same"
run bridge bridge --application mvrp --bridge "${long[@]}" p0 p1
run left left --application mvrp --declare 10 "${long[@]}" eth0
run right right --application mvrp --declare 40 "${long[@]}" eth0
heard bridge 'p0 +join +VLAN 10 ' 'p1 +join +VLAN 40 '
silent right 'join'
silent left 'join'
on bridge bridge link set dev p1 state 3
heard right 'join +VLAN 10 '
on bridge bridge link set dev p1 state 2
heard right 'leave +VLAN 10$'
stop bridge
