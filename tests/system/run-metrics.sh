#!/usr/bin/env bash
# `mrp run --metrics`: what a scrape gets, and what clients that mean no good cost it.
# shellcheck source-path=SCRIPTDIR source=stations.bash
. "$(dirname "$0")/stations.bash"

# scraped HOST PYTHON: runs it there, with `get`.
scraped() {
   on "$1" python3 -c "
import os, re, signal, socket, sys, time, urllib.error, urllib.request
pid = ${pids[right]}
def get( path, method = 'GET', host = '127.0.0.1:9100' ):
   request = urllib.request.Request( f'http://{host}{path}', method = method )
   try:
      with urllib.request.urlopen( request, timeout = 15 ) as answer:
         return answer.status, answer.headers, answer.read().decode()
   except urllib.error.HTTPError as error:
      return error.code, error.headers, ''
$2" "$MRP_SOURCE_DIR/docs/observability.md" 2>> "$work/scrape.err"
}

host left right
wire left eth0 right eth0
on right ip link set lo up
ip -n left address add 10.0.0.1/24 dev eth0
ip -n right address add 10.0.0.2/24 dev eth0
run right right --application mvrp --metrics 9100 --socket none "${long[@]}" eth0
run left left --application mvrp --declare 10,20-21 --socket none "${long[@]}" eth0
heard right 'VLAN 10 ' 'VLAN 20 ' 'VLAN 21 '

# shellcheck disable=SC2016
scraped right '
text, deadline = "", time.monotonic() + 10
while "interface=\"eth0\",type=\"VLAN\",state=\"IN\"} 3\n" not in text: # from the next commit on
   assert time.monotonic() < deadline, text
   status, headers, text = get( "/metrics" )
   assert status == 200 and headers[ "Content-Type" ].startswith( "text/plain; version=0.0.4" )
documented = re.findall( r"`(mrp_\w+_total)`", open( sys.argv[ 1 ] ).read() )
assert len( documented ) >= 10 and all( f"# TYPE {name} counter\n" in text for name in documented )
assert get( "/metrics", "HEAD" )[ 2 ] == ""
assert get( "/" )[ 0 ] == 404
status, headers, text = get( "/metrics", "DELETE" )
assert status == 405 and headers[ "Allow" ] == "GET, HEAD"
' || fail "the scrape is not what it should be"

# Nobody else gets at it, unless it is told to serve others; and nobody else gets its port.
! scraped left 'get( "/metrics", host = "10.0.0.2:9100" )' || fail "other hosts get at the metrics"
run open left --application mvrp --metrics 10.0.0.1:9100 --socket none "${long[@]}" eth0
others_get() {
   scraped right 'sys.exit( get( "/metrics", host = "10.0.0.1:9100" )[ 0 ] != 200 )'
}
until_true others_get || fail "the address that was asked for is not served"
refused right '^mrp: metrics: tcp:127.0.0.1:9100: .*in use' --application msrp \
   --metrics 127.0.0.1:9100 --socket none eth0

# More of those that never end what they have to say than there is room for: each gets its few
# seconds, and the scrape its turn. Meanwhile the protocol goes on.
scraped right '
descriptors = lambda: len( os.listdir( f"/proc/{pid}/fd" ) )
before = descriptors()
noise = b"GET /metrics HTTP/1.1\r\nHost: a\r\nX: " + b"x" * 100000
held = [ socket.create_connection( ( "127.0.0.1", 9100 ) ) for n in range( 10 ) ]
for client, text in zip( held, ( b"", b"GET /met", noise, b"\0" * 5000, b"POST /" ) * 2 ):
   client.setblocking( False )
   client.send( text )
print( "held", flush = True )
assert get( "/metrics" )[ 0 ] == 200
del held, client
# All that it has room for end at one and the same time.
many = [ socket.create_connection( ( "127.0.0.1", 9100 ) ) for n in range( 20 ) ]
deadline = time.monotonic() + 10
while descriptors() < before + 8:
   assert time.monotonic() < deadline, descriptors() - before
   time.sleep( 0.01 )
os.kill( pid, signal.SIGSTOP )
for client in many:
   client.close()
os.kill( pid, signal.SIGCONT )
assert get( "/metrics" )[ 0 ] == 200
' > "$work/hostile.out" &
pids[hostile]=$!
until_true grep -qs held "$work/hostile.out" || fail "no connections"
run more left --application mvrp --declare 30 --socket none "${long[@]}" eth0
heard right 'VLAN 30 '
wait "${pids[hostile]}" || fail "a scrape behind silent clients is not served"
unset 'pids[hostile]'
stop right || fail "SIGTERM does not end the command with 0"
