#!/usr/bin/env bash
# Two hosts on a cable: what one declares the other registers, and gives up when it is withdrawn,
# when nobody says it any more, and when the link goes.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host left right
wire left eth0 right eth0
capture right eth0

run left left --application mvrp --declare 10,20-22 eth0
run right right --application mvrp --declare 30 eth0
heard right 'eth0 +join +VLAN 10 ' 'VLAN 20 ' 'VLAN 21 ' 'VLAN 22 '
heard left 'eth0 +join +VLAN 30 '

# The table.
kill -USR1 "${pids[right]}"
heard right 'eth0 +VLAN +20-22 +.* IN( |$)' 'eth0 +VLAN +30 +QA'

# Withdrawn: the default leave time of 0.6 s.
stop left || fail "SIGTERM does not end the command with 0"
heard right 'leave +VLAN 10$' 'leave +VLAN 20$' 'leave +VLAN 21$' 'leave +VLAN 22$'
stop right INT || fail "SIGINT does not end the command with 0"
decode right eth0 'Multiple VLAN Registration Protocol'
[ ! -e "$work/decoded" ] || grep -q 'Leave' "$work/decoded" || fail "no Leave in the capture"

# Killed: it ages out with the LeaveAlls of the other, and not before.
run left left --application mvrp --declare 10 "${short[@]}" eth0
run right right --application mvrp "${short[@]}" --json eth0
heard right '^\{"time":[0-9.]+,"interface":"eth0","kind":"join","attributeType":1,'\
'"attributeEvent":"[a-zA-Z]+","key":"10","value":"000a"\}$'
kill -USR1 "${pids[right]}"
heard right '^\{"time":[0-9.]+,"kind":"attributes","attributes":\[\{.*"registrarState":"mrpIn"'
stop left KILL && fail "SIGKILL is survived"
heard right '"kind":"leave".*"key":"10"'
said right 'warning: a leave-all-time of 2.5 s'
stop right

# Who comes back is heard at once. The link goes and comes, and no timer has to run for either to
# be known.
run right right --application mvrp "${long[@]}" eth0
run left left --application mvrp --declare 10 "${long[@]}" eth0
heard right 'join +VLAN 10 '
ip -n left link set eth0 down
heard right 'leave +VLAN 10$'
ip -n left link set eth0 up
heard right 'join +VLAN 10 '

# The interface itself goes and comes: another device of the same name.
ip -n left link del eth0
heard right 'leave +VLAN 10$'
wire left eth0 right eth0
heard right 'join +VLAN 10 '

stop left
heard right 'leave +VLAN 10$'
stop right
silent left 'leave'
