#!/usr/bin/env bash
# Nobody reads what `mrp run` prints: it takes part all the same, ends when it is told to, and says
# what is missing to a reader who goes on.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

host left right
wire left eth0 right eth0
on right ip link set lo up
mkfifo "$work/lines"
exec 8<> "$work/lines"
ip netns exec right "$MRP" run --application mvrp --json --metrics 9100 --socket none \
   "${long[@]}" eth0 > "$work/lines" 2> "$work/right.err" &
pids[right]=$!
declare_many() {
   run left left --application mvrp --declare 10-4000 --socket none "${long[@]}" eth0
}
# registered NUMBER: so many VLANs are, or before long, and no other is about to age out.
registered() {
   until_true on right python3 -c '
import sys, urllib.request
with urllib.request.urlopen( "http://127.0.0.1:9100/metrics", timeout = 5 ) as answer:
   text = answer.read().decode()
assert f"state=\"IN\"}} {sys.argv[ 1 ]}\n" in text and "state=\"LV\"} 0\n" in text
' "$1" 2> "$work/scrape.err" || fail "not so many VLANs are registered: $1"
}

# Two megabytes of lines.
for _ in 1 2; do
   declare_many
   registered 3991
   stop left
   registered 0
done

# Every line is whole, and there or counted.
launch reader cat "$work/lines"
is_all_there() {
   python3 -c '
import json, sys
lines = [ json.loads( line ) for line in open( sys.argv[ 1 ] ) ]
missing = [ line[ "lines" ] for line in lines if line[ "kind" ] == "missing" ]
assert len( missing ) == 1 and len( lines ) - 1 + missing[ 0 ] == 15964, ( len( lines ), missing )
assert 1 << 20 < sum( len( json.dumps( line, separators = ",:" ) ) + 1 for line in lines ) < 1.2e6
' "$work/reader.out" 2> "$work/all.err"
}
until_true is_all_there || fail "lines are missing, or too many waited"

kill -STOP "${pids[reader]}"
declare_many
registered 3991
stop right || fail "SIGTERM does not end the command with 0"
