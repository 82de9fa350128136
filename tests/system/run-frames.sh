#!/usr/bin/env bash
# Many frames on a cable: at small and large MTUs, and in a storm of what is foreign or broken, in
# which registrations stay.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host left right
wire left eth0 right eth0

# All odd VLANs: 2047 vectors of one value, which take 10 kB.
odd=$(seq -s , 1 2 4093)
all_joined() {
   [ "$(count right join)" -ge 2047 ]
}
for mtu in 100 9000; do
   ip -n left link set eth0 mtu $mtu
   ip -n right link set eth0 mtu $mtu
   capture right eth0
   run left left --application mvrp --declare "$odd" eth0
   run right right --application mvrp eth0
   until_true all_joined || fail "$(count right join) joins at MTU $mtu"
   stop left
   heard right 'leave +VLAN 4093$'
   stop right
   decode right eth0 'Multiple VLAN Registration Protocol'
   if [ -e "$work/decoded" ]; then
      longest=$(grep -oP '^Frame \d+: \K\d+' "$work/decoded" | sort -n | tail -n 1)
      [ "$longest" -le $(( (mtu < 1500 ? mtu : 1500) + 14 )) ] || fail "a frame of $longest bytes"
      read=$(grep -oP ' VLAN ID: \K\d+' "$work/decoded" | sort -nu | paste -s -d , | sed "s,^0.,,")
      [ "$read" = "$odd" ] || fail "tshark reads other VLANs: $read"
   fi
done

# 100,000 frames, of which none says anything valid.
cat > "$work/storm.py" <<'PY'
import random
import socket

out = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
out.bind(("eth0", 0))
# VLAN 100, 101, 102 JoinIn.
good = bytes.fromhex("00 01 02 0003 0064 2b 0000 0000")
wrong_length = bytes.fromhex("00 01 07 0003 0064 2b 0000 0000")
dice = random.Random(1)
sent = 0
while sent < 100000:
    frame = (b"\x88\xf6" + good,  # another type
             b"\x88\xf5" + good[: dice.randrange(len(good))],
             b"\x88\xf5" + wrong_length + dice.randbytes(dice.randrange(1000)),
             bytes.fromhex("81000005 81000006 88f5") + good)[sent % 4]  # a tag in a tag
    try:
        sent += out.send(bytes.fromhex("0180c2000021 020000000099") + frame) > 0
    except OSError:
        pass  # no room at the moment
PY
run left left --application mvrp --declare 10,20-29 "${short[@]}" eth0
run right right --application mvrp --declare 30 "${short[@]}" --trace Mrp/4 --ring "$work/ring" eth0
heard right 'join +VLAN 10 ' 'join +VLAN 29 '
heard left 'join +VLAN 30 '
arrived() {
   on right cat /sys/class/net/eth0/statistics/rx_packets
}
before=$(arrived)
on left python3 "$work/storm.py"
[ $(( $(arrived) - before )) -ge 100000 ] || fail "the storm has not arrived"
kill -USR1 "${pids[right]}"
# LV: a LeaveAll's answer may stand in the queue behind the storm.
heard right 'eth0 +VLAN +10 .* (IN|LV)( |$)' 'eth0 +VLAN +20-29 .* (IN|LV)( |$)'
[ "$(count right 'leave')" = 0 ] || fail "a registration was lost in the storm"
[ "$(count left leave)" = 0 ] || fail "a registration was lost in the storm"
said right '^Mrp/4 [A-Za-z]+\.cpp:[0-9]+ '
stop left
heard right 'leave +VLAN 10$' 'leave +VLAN 29$'

# What the ring holds is there after the process.
stop right KILL || true
"$MRP" ring "$work/ring" > "$work/right-ring.out" || fail "the ring is not to be read"
grep -q '  8  MrpIntfPamSm::handleMrpdu() eth0$' "$work/right-ring.out" || fail "no frames in the ring"
