// What is wrong on the command line is said in one line; so is what is wrong with a file that it
// names, unless tests of the subcommand have more to say of it.
#include "tests/command/CommandRun.h"

#include <fstream>
#include <span>

namespace CommandTest {

namespace {

struct Case {
   std::string words;
   std::string error;
};

struct CommandLineTest : CommandTest {
   static void expectAllRefused( std::string const & subcommand, std::span< Case const > cases ) {
      for ( auto const & [words, error] : cases ) {
         expectRefused( mrp( subcommand + " " + words ), error );
      }
   }
};

TEST_F( CommandLineTest, HelpAndVersionAreNoErrorsAndNoSubcommandIsOne ) {
   for ( char const * const asked : { "-h", "--version", "run -h" } ) {
      EXPECT_EQ( mrp( asked ).status, 0 );
   }
   expectRefused( mrp( "" ), "subcommand" );
}

TEST_F( CommandLineTest, ReplaySaysWhatIsWrong ) {
   auto const good = capture( "good.pcap", {} );
   auto const old = capture( "old.pcap", { { 0, TestSupport::mvrpFrame() } } );
   auto const now = capture( "now.pcap", { { start, TestSupport::mvrpFrame() } } );
   auto const wifi = capture( "wifi.pcap", {} );
   std::fstream( wifi, std::ios::in | std::ios::out ).seekp( 20 ).put( 105 ); // its link type
   auto const text = file( "text", "hello" );
   Case const cases[] = {
      { "", "CAPTURE" },
      { good + " " + good, "interface eth0" },
      { "=" + good, "NAME=FILE" },
      { "--tail 1e " + good, "--tail: '1e'" },
      { "--ethertype 65536 " + good, "--ethertype: '65536'" },
      { "--address 01:80:c2:00:00 " + good, "no MAC address" },
      { path( "missing" ), path( "missing" ) + ": No such file" },
      { text, text + ": not a capture" },
      { "a=" + good + " b=" + wifi, wifi + ": link type IEEE802_11" },
      { "a=" + old + " b=" + now, "19675 days" },
      { "--out " + path( "" ) + " good=" + good, "would be overwritten" },
      { "--out " + text + " " + good, text + ": " },
   };
   expectAllRefused( "replay --application mvrp", cases );
   expectRefused( mrp( "replay --application gvrp " + good ), "mvrp or msrp" );
}

TEST_F( CommandLineTest, RunSaysWhatIsWrong ) {
   auto const text = file( "text", "hello" );
   Case const vlans[] = {
      { "", "no interface is given to take part on" },
      { "eth0 eth1 eth0", "the interface 'eth0' is given twice" },
      { "--declare 10,,20", "--declare: '' is no VLAN: 1 to 4094" },
      { "--declare 20-10", "--declare: '20-10' is no range of VLANs: it runs backwards" },
      { "--listener 02:00:00:00:00:01:00:07 eth0", "listener is for msrp" },
      { "--leave-time 0", "--leave-time: '0' is too short" },
      { "--log file", "--log: 'file' is no place for logs: errors, stderr, syslog or none" },
      { "--socket tpc:7000", "--socket: 'tpc:7000' is no address of a stream: a path, unix:PATH, "
                             "tcp:PORT, tcp:HOST:PORT, or none" },
      { "--metrics 65536", "'65536' is neither PORT nor HOST:PORT, such as 9100" },
      { "--config no-such-file", "no-such-file: No such file or directory" },
      { "--trace Mrp/99 lo", "trace: '99' is no level: 0 to 9" },
      { "--ring " + text + " lo", "ring: " + text + ": it is no ring file, and is left alone" },
   };
   expectAllRefused( "run --application mvrp", vlans );
   Case const streams[] = {
      { "--listener 02:00:00:00:00:01",
        "'02:00:00:00:00:01' is no stream id, such as 02:00:00:00:00:01:00:07" },
      { "--talker stream=02:00:00:00:00:01:00:07", "--talker: dest is missing" },
      { "--talker size=7", "size: there is no 'size' here, but stream, dest, frame-size" },
      { "--talker rank=1,rank=1", "--talker: rank: it is there twice" },
      { "--talker frame-size=65536",
        "frame-size: '65536' is no number that can stand here: 0 to 65535" },
      { "--domain class=H,priority=1,vlan=2", "--domain: class: 'H' is no SR class: A to G" },
      { "--talker stream=02:00:00:00:00:01:00:07,dest=91:e0:f0:00:00:07,frame-size=1,class=C",
        "a talker is of class C, of which nothing is known: --domain class=C,priority=" },
   };
   expectAllRefused( "run --application msrp eth0", streams );
   expectRefused( mrp( "run eth0" ), "no application is given: --application mvrp or msrp" );
}

TEST_F( CommandLineTest, RingAndShowSayWhatIsWrong ) {
   auto const text = file( "text", "hello" );
   Case const cases[] = {
      { "ring", "FILE" },
      { "ring " + path( "none" ), path( "none" ) + ": No such file or directory" },
      { "ring " + text, text + ": it is no ring file" },
      { "ring /dev/zero", "/dev/zero: it is no ring file" }, // without an end
      { "ring --level 12 " + text, "--level: '12' is no level: 0 to 9" },
      { "show --type stream", "--type: 'stream' is no attribute type: VLAN (1), Talker Adv" },
      { "show --state XX", "'XX' is no state: IN, LV, MT of the registrar, VO, " },
      { "show --metrics --watch", "--metrics goes with neither" },
      { "show /none/mrp.sock", "unix:/none/mrp.sock: cannot connect: No such file" },
   };
   expectAllRefused( "", cases );
}

} // namespace

} // namespace CommandTest
