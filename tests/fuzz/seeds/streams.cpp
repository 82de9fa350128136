// Seeds of the observer's fuzzer: what a participant says on its mirror stream.
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/platform/attrlog/Output.h"

#include "tests/fuzz/seeds/Corpus.h"
#include "tests/support/Participant.h"

namespace Fuzz {

namespace {

using namespace Korv::NboAttrLog;
using namespace TestSupport;

// The messages, each with its length in one byte in front instead of four: the fuzzer's own form.
Bytes framed( Bytes const & stream ) {
   Bytes all{ 1, 255 };
   for ( std::size_t at = greetingBytes; at < stream.size(); ) {
      U8 const size = stream[at + lengthBytes - 1];
      auto const end = stream.begin() + static_cast< std::ptrdiff_t >( at + lengthBytes + size );
      all.insert( all.end(), end - size - 1, end );
      at += lengthBytes + size;
   }
   return all;
}

// A stream with a little room, which is taken from when told to.
struct Line {
   explicit Line( Mrp::AttrLogMounts const & mounts ) : adapters( mounts.mount( output ) ) {}
   void take() {
      while ( !output.idle() ) {
         all.insert( all.end(), output.front().begin(), output.front().end() );
         output.frontDel( output.bytes() );
         output.doFlowOut();
      }
   }
   void add( Corpus const & corpus, std::string const & name ) {
      take();
      corpus.add( name, framed( all ) );
      Bytes plain{ 0, 99 };
      plain.insert( plain.end(), all.begin(), all.end() );
      corpus.add( name + "-plain", plain );
   }
   Output output{ 100 };
   std::vector< std::unique_ptr< Adapter > > adapters;
   Bytes all;
};

} // namespace

void writeStreams( Corpus const & corpus ) {
   std::string const intf = "Ethernet1";
   {
      Participant mvrp( Mrp::MVRP );
      Mrp::AttrLogMounts mounts;
      mounts.statusIs( &mvrp.status() );
      mvrp.receive( intf, mvrpFrame( vlans( 10, { JoinIn, JoinIn } ) ) );
      mvrp.advanceTo( 1 );
      Line whole( mounts );
      whole.add( corpus, "status" );
      Line changes( mounts );
      changes.take();
      mvrp.receive( intf, mvrpFrame( vlans( 10, { Lv, JoinIn, New } ) ) );
      mvrp.advanceTo( 12 ); // a member goes, another comes, LeaveAll times change
      changes.add( corpus, "status-changes" );
      Line again( mounts );
      again.take();
      again.adapters[0]->suspendedIs( true );
      again.adapters[0]->suspendedIs( false );
      again.output.doFlowOut();
      again.add( corpus, "status-again" );
   }
   Participant msrp( Mrp::MSRP );
   Mrp::AttrLogMounts mounts;
   mounts.configIs( &msrp.config() );
   mounts.countersIs( msrp.sm().mrpCounters() );
   mounts.parseContextIs( msrp.sm().parseContext() );
   msrp.config().intfLeaveTimeIs( Pelk::IntfId( intf ), 0.5 );
   msrp.config().intfLeaveAllTimeIs( Pelk::IntfId( intf ), 5 );
   Line records( mounts );
   records.take();
   msrp.declare( intf, talker( 1 ), 0 );
   msrp.config().intfLeaveTimeDel( Pelk::IntfId( intf ) );
   records.add( corpus, "records" );
}

} // namespace Fuzz
