# shellcheck shell=bash
# What the tests of `mrp run` share: network namespaces as hosts, and `mrp run` on them.
#
# A test sources this file first. It then runs in namespaces of its own, as root within them, so
# that all it makes and starts goes with it, whatever ends it; where the machine does not allow
# that, the test is skipped. Nothing here waits for a time: what is to happen is polled for.
set -euo pipefail

skip() {
   echo "skipped: $*"
   exit 77
}
fail() {
   echo "failed: $*" >&2
   for log in "$work"/*.out "$work"/*.err; do
      echo "--- ${log##*/}" >&2
      tail -n 20 "$log" >&2
   done
   exit 1
}

[ -x "${MRP-}" ] || { echo "MRP does not name the command" >&2; exit 1; }
export PATH=$PATH:/usr/sbin:/sbin
command -v ip > /dev/null || skip "no ip (package iproute2)"
command -v python3 > /dev/null || skip "no python3"

if [ -z "${MRP_INSIDE-}" ]; then
   own=( unshare --net --mount --pid --fork --kill-child --mount-proc )
   "${own[@]}" true 2> /dev/null || own+=( --map-root-user )
   problem=$("${own[@]}" bash -c \
      'mount -t tmpfs none /run && ip netns add try && ip netns exec try true' 2>&1) ||
      skip "no network namespaces to be had here (${problem##*$'\n'})"
   MRP_INSIDE=yes exec "${own[@]}" bash "$0" "$@"
fi
mount -t tmpfs none /run
work=$(mktemp -d)
declare -A pids marks
cleanup() {
   kill -KILL "${pids[@]}" 2> /dev/null || true
   wait 2> /dev/null
   rm -rf "$work"
}
trap cleanup EXIT

# Times that a test can wait for, and the same in each run; and times so long that what happens
# has another cause.
export DISABLE_LEAVE_ALL_RANDOMIZATION=1
short=( --leave-time 1 --leave-all-time 2.5 )
long=( --leave-time 1 --leave-all-time 300 )
# Seconds until something that has not happened never will: a bound for tests that fail.
patience=20

# host NAME...: a namespace each.
host() {
   local name
   for name; do
      ip netns add "$name"
   done
}
# wire HOST INTERFACE HOST INTERFACE: a cable with its plugs, switched on.
wire() {
   ip link add "$2" netns "$1" type veth peer name "$4" netns "$3"
   quiet "$1" "$2"
   quiet "$3" "$4"
}
# Up, and with nothing on it that nobody asked for.
quiet() {
   ip netns exec "$1" sysctl -q -w "net.ipv6.conf.$2.disable_ipv6=1" 2> /dev/null || true
   ip -n "$1" link set "$2" up
}

# on HOST COMMAND...
on() {
   ip netns exec "$@"
}
# launch NAME COMMAND...: in the background, under that name, with its output in files of that name.
# Not by `on`: that would be one more shell, which would get the signals.
launch() {
   local name=$1
   shift
   # Here, as whoever looks next may be there before the command.
   : > "$work/$name.out"
   : > "$work/$name.err"
   "$@" > "$work/$name.out" 2> "$work/$name.err" &
   pids[$name]=$!
   marks[$name]=0
}
# run NAME HOST OPTION...: `mrp run` under that name.
run() {
   launch "$1" ip netns exec "$2" "$MRP" run "${@:3}"
}
# stop NAME [SIGNAL]: and its exit status is the result.
stop() {
   local status=0
   kill "-${2-TERM}" "${pids[$1]}"
   # A shell says "Killed" when a job is.
   wait "${pids[$1]}" 2> /dev/null || status=$?
   unset "pids[$1]"
   return $status
}
# refused HOST PATTERN OPTION...: `mrp run` does not start, and says why in one line.
refused() {
   local host=$1 pattern=$2 status=0
   shift 2
   on "$host" timeout "$patience" "$MRP" run "$@" > "$work/refused.out" 2> "$work/refused.err" ||
      status=$?
   [ $status = 2 ] || fail "exit status $status with: $*"
   [ "$(wc -l < "$work/refused.err")" = 1 ] || fail "not one line with: $*"
   grep -q -- "$pattern" "$work/refused.err" || fail "not '$pattern' with: $*"
}
# What NAME has printed since the last `heard` of it.
since() {
   tail -n "+$(( marks[$1] + 1 ))" "$work/$1.out"
}
# until_true COMMAND...: polls it.
until_true() {
   local end=$(( SECONDS + patience ))
   until "$@"; do
      [ $SECONDS -lt $end ] || return 1
      sleep 0.05
   done
}
# said NAME PATTERN: on standard error, or does before long.
said() {
   until_true grep -Eq -- "$2" "$work/$1.err" || fail "$1 has not said: $2"
}
has_lines() {
   local name=$1 line
   shift
   for line; do
      # Not -q, which leaves whoever writes alone with a broken pipe.
      since "$name" | grep -E -- "$line" > /dev/null || return 1
   done
}
# heard NAME PATTERN...: it has printed, or prints before long, a line of each.
heard() {
   local name=$1
   shift
   until_true has_lines "$name" "$@" || fail "$name has not printed: $*"
   marks[$name]=$(wc -l < "$work/$name.out")
}
# silent NAME PATTERN: it has printed no such line since.
silent() {
   ! since "$1" | grep -E -- "$2" || fail "$1 has printed: $2"
}
# Every line that NAME has printed at all, of that pattern.
count() {
   grep -Ec -- "$2" "$work/$1.out" || true
}

# capture HOST INTERFACE: what passes there, from now until `decode`.
capture() {
   if ! command -v tshark > /dev/null; then
      echo "no tshark: nothing will be decoded"
      return
   fi
   # The part of tshark that captures, which says when it has begun to.
   ip netns exec "$1" dumpcap -q -i "$2" -f 'ether proto 0x88f5 or ether proto 0x22ea' -w - \
      > "$work/capture-$1-$2" 2> "$work/capture-$1-$2.err" &
   pids[capture-$1-$2]=$!
   until_true grep -qs '^File: ' "$work/capture-$1-$2.err" || fail "dumpcap does not capture"
}
# decode HOST INTERFACE PROTOCOL: ends the capture. Every frame in it is of the protocol, and none
# is malformed; the lines that tshark makes of them are in $work/decoded.
decode() {
   local file=$work/capture-$1-$2 frames
   [ -n "${pids[capture-$1-$2]-}" ] || return 0
   # A busy machine hands tshark its first frames late.
   has_frames() {
      [ -n "$(tshark -c 1 -r "$file" 2> /dev/null)" ]
   }
   until_true has_frames || fail "nothing was captured"
   stop "capture-$1-$2" INT || true
   tshark -r "$file" -V > "$work/decoded" 2> /dev/null
   frames=$(grep -c '^Frame ' "$work/decoded" || true)
   [ "$frames" -gt 0 ] || fail "nothing was captured"
   [ "$(grep -c "^$3" "$work/decoded")" = "$frames" ] || fail "tshark knows frames as other than $3"
   ! grep -i -m 3 -B 3 'malformed' "$work/decoded" || fail "tshark finds frames malformed"
   echo "tshark decodes all of $frames frames"
}
