# shellcheck shell=bash source-path=SCRIPTDIR source=../../tests/system/stations.bash
# What scripts/soak starts: soak.bash APPLICATION MINUTES. One host is the storm, with a cable to
# each of the two ports of the other, which runs the command.
. "$(dirname "$0")/../../tests/system/stations.bash"

application=$1 minutes=$2
host agent storm
wire storm s0 agent p0
wire storm s1 agent p1
on agent ip link set lo up

options=( --leave-time 0.6 --leave-all-time 5 --metrics 9100 --log errors --trace Mrp/3 )
case $application in
   mvrp) options+=( --bridge --declare "10,20-29" ) ;;
   msrp) options+=( --listener 02:00:00:00:00:09:00:01
      --talker "stream=02:00:00:00:00:09:00:02,dest=91:e0:f0:00:09:02,frame-size=100" ) ;;
esac
# Not by `run`, which keeps what is printed: that would be gigabytes.
ip netns exec agent "$MRP" run --application "$application" "${options[@]}" p0 p1 \
   > /dev/null 2> "$work/agent.err" &
pids[agent]=$!
memory=compared
! grep -q __asan_init "$MRP" || memory=sanitized

verdict=passed
on agent python3 "$(dirname "$0")/soak.py" crowd "$application" "$minutes" "${pids[agent]}" \
   "/run/mrp/$application.sock" $memory || verdict=failed
echo "commits held back by an observer: $(grep -c 'above threshold' "$work/agent.err") times"
# What it has said besides, a sanitizer's last words included.
grep -Ev '^Mrp/3 | MRP_ERROR: ' "$work/agent.err" | tail -n 40 || true
status=0
stop agent INT || status=$?
if [ $status != 0 ]; then
   verdict=failed
   echo "problem: SIGINT ended it with status $status"
fi
echo "soak $verdict: $application, $minutes minutes"
[ $verdict = passed ]
