// A mirror at the end of a stream: whenever the stream is idle it equals the original, whatever has
// happened on the way.
#include "tests/support/MirrorLine.h"
#include "tests/support/Random.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using namespace Mrp;
using namespace Korv::NboAttrLog;

MrpIntfTypeApplicant & vlansOf( MrpStatus & status ) {
   return *status.applicationIs( MVRP )
              ->attrDatabaseIs( Pelk::IntfId( "e1" ) )
              ->intfTypeApplicantIs( 1 );
}

// The same entities as at the other end.
struct Original : MrpObserver::Mirror {
   Original() {
      mounts.statusIs( &status() );
      mounts.configIs( &config() );
      mounts.countersIs( &counters() );
      mounts.parseContextIs( &parseContext() );
   }
   MrpIntfTypeApplicant & vlans() const { return vlansOf( status() ); }
   AttrLogMounts mounts;
};

std::string textOf( MrpObserver::Mirror const & mirror ) {
   return treeText( mirror.status() ) + treeText( mirror.config() ) +
          treeText( mirror.counters() ) + treeText( mirror.parseContext() );
}

// Any change of anything that is published. There is little, so that what changes is often what is
// just being told.
void change( Original & original, Random & random ) {
   Pelk::IntfId const intf( random.oneOf( { "e1", "e2" } ) );
   constexpr U8 type = 1;
   U64 const key = random.below( 3 );
   auto * const database = original.status().applicationIs( random.below( 2 ) ? MSRP : MVRP );
   auto * const types = database->attrDatabaseIs( intf );
   auto * const attributes = types->intfTypeApplicantIs( type );
   auto const byte = static_cast< U8 >( random.below( 5 ) );
   switch ( random.below( 24 ) ) {
   case 0: return original.status().applicationDel( MSRP );
   case 1: return database->attrDatabaseDel( intf );
   case 2: return types->intfTypeApplicantDel( type );
   case 3: return attributes->mrpAttributeDelAll();
   case 4: return database->leaveAllTimeDel( { intf, type } );
   case 5: return original.config().intfLeaveTimeIs( intf, random.below( 5 ) );
   case 6: return original.config().intfLeaveTimeDel( intf );
   case 7: return original.config().mrpFloodingIs( random.below( 2 ) == 0 );
   case 8: return original.counters().numOfPktsProcessedInc( 1 );
   case 9: return original.parseContext().attributeKeyIs( random.next() );
   case 10: return original.parseContext().intfIdIs( intf );
   case 11:
   case 12: return database->leaveAllTimeIs( { intf, type }, random.below( 9 ) );
   case 13:
   case 14: return attributes->mrpAttributeDel( key );
   default: break;
   }
   MrpAttrDatabase & attribute = *attributes->mrpAttributeIs( key );
   auto const & value = attribute.attributeValue();
   switch ( random.below( 9 ) ) {
   case 0: return attribute.applicantStateIs( static_cast< MrpApplicantState >( byte ) );
   case 1: return attribute.registrarStateIs( static_cast< MrpRegistrarState >( byte % 3 ) );
   case 2: return static_cast< void >( attribute.attributeValueDeq() );
   case 3: return attribute.attributeValueDelAll();
   case 4: {
      auto const head = static_cast< U8 >( random.oneOf( { 0, 1, 5, 62, 64 } ) );
      return attribute.attributeValueMetadataIs( { head, static_cast< U8 >( byte * 3 ) } );
   }
   case 5: return attribute.attributeValueDel( random.below( 65 ) );
   case 6: {
      // Right before the span.
      bool const room = value.count() > 0 && value.count() < 65;
      return room ? attribute.attributeValueIs( ( value.head() + 64 ) % 65, byte ) : void();
   }
   default: return value.count() < 65 ? attribute.attributeValueEnq( byte ) : void();
   }
}

TEST( Mirror, equalsTheOriginalWheneverTheStreamIsIdle ) {
   for ( U64 seed = 1; seed <= 80; ++seed ) {
      Random random( seed );
      Original original;
      // From a bound that no message fits in to one that is never reached.
      MirrorLine line( original.mounts, std::size_t{ 1 } << random.below( 17 ) );
      for ( int step = 0; step < 400; ++step ) {
         change( original, random );
         switch ( random.below( 20 ) ) {
         case 0:
            for ( std::size_t root = 0; root < 4; ++root ) {
               line.root( root ).suspendedIs( false );
            }
            line.output().doFlowOut();
            line.moveAll();
            ASSERT_EQ( textOf( line.mirror() ), textOf( original ) ) << "seed " << seed;
            break;
         case 1:
         case 2: line.root( random.below( 4 ) ).suspendedIs( random.chance( 0.5 ) ); break;
         case 3: random.chance( 0.1 ) ? line.connect() : line.moveAll(); break;
         case 4:
         case 5:
         case 6:
         case 7: line.move( random.below( 300 ) ); break;
         default: break;
         }
      }
   }
}

struct Watcher : MrpAttrDatabase::Reactor {
   void onApplicantState() override { ++changes; }
   int changes = 0;
};

TEST( Mirror, hasAnAttributeThoughNothingElseIsSaid ) {
   Original original;
   auto & vlans = original.vlans();
   MirrorLine line( original.mounts );
   line.moveAll();
   vlans.mrpAttributeIs( 10 )->registrarStateIs( mrpMt );
   line.moveAll();
   EXPECT_EQ( textOf( line.mirror() ), textOf( original ) );
}

// A watcher hears of what has changed, also across connections.
TEST( Mirror, keepsItsEntitiesFromStreamToStream ) {
   Original original;
   auto & vlans = original.vlans();
   vlans.mrpAttributeIs( 10 )->applicantStateIs( mrpQuietActive );
   vlans.mrpAttributeIs( 11 );
   MirrorLine line( original.mounts );
   line.moveAll();
   auto & mirrored = vlansOf( line.mirror().status() );
   Watcher watcher;
   watcher.notifierIs( mirrored.mrpAttribute( 10 ) );
   line.connect();
   line.moveAll();
   EXPECT_EQ( watcher.changes, 0 );
   vlans.mrpAttributeDel( 11 );
   vlans.mrpAttribute( 10 )->applicantStateIs( mrpAnxiousActive );
   line.connect(); // what was said on the old one is lost
   line.moveAll();
   EXPECT_EQ( watcher.changes, 1 );
   EXPECT_EQ( mirrored.mrpAttribute().size(), 1u );
}

TEST( Mirror, isNotEndedByItsWatchers ) {
   struct Ending : MrpConfig::Reactor {
      void onLeaveTime() override { mirror->streamEnds(); }
      MrpObserver::Mirror * mirror;
   } ending;
   Original original;
   MirrorLine line( original.mounts );
   line.moveAll();
   ending.mirror = &line.mirror();
   ending.notifierIs( &line.mirror().config() );
   original.config().leaveTimeIs( 3 );
   EXPECT_DEATH( line.moveAll(), "no watcher ends the stream" );
}

// The stream's beginning, and what changes.
template < class Changes >
Bytes streamOf( Original const & original, Changes && changes ) {
   Output output( 1 << 20 );
   auto const adapters = original.mounts.mount( output );
   changes();
   return { output.front().begin(), output.front().end() };
}
Bytes streamOf( Original const & original ) {
   return streamOf( original, [] {} );
}

std::string errorOf( Bytes const & bytes, std::size_t maxBytes = Input::usualMaxBytes ) {
   MrpObserver::Mirror mirror( maxBytes );
   mirror.streamBegins();
   try {
      mirror.handleBytes( bytes );
   } catch ( MrpObserver::StreamError const & error ) {
      EXPECT_FALSE( mirror.hasStream() );
      return error.what();
   }
   return "";
}

TEST( Mirror, endsABrokenStreamInAnError ) {
   Original original;
   Random random( 1 );
   for ( int i = 0; i < 200; ++i ) {
      change( original, random );
   }
   Bytes const whole = streamOf( original );
   EXPECT_EQ( errorOf( whole ), "" );
   EXPECT_EQ( errorOf( Bytes( greetingBytes, 'H' ) ), "not a mirror stream" );
   Bytes version = whole;
   version[9] = 2;
   EXPECT_EQ( errorOf( version ), "a stream of another version" );
   // Any byte changed: applied, or an error, and never worse.
   U32 errors = 0;
   for ( int i = 0; i < 1000; ++i ) {
      Bytes broken = whole;
      broken[random.below( broken.size() )] ^= static_cast< U8 >( 1 + random.below( 255 ) );
      errors += errorOf( broken ).empty() ? 0 : 1;
   }
   EXPECT_GT( errors, 300u );
}

TEST( Mirror, hasAnEndToWhatItHolds ) {
   Original original;
   for ( U64 vlan = 0; vlan < 100; ++vlan ) {
      original.vlans().mrpAttributeIs( vlan );
   }
   Bytes const whole = streamOf( original );
   constexpr std::size_t members = 103; // with three levels above
   EXPECT_EQ( errorOf( whole, ( members + 1 ) * Input::memberBytes ), "" );
   EXPECT_EQ( errorOf( whole, ( members - 1 ) * Input::memberBytes ),
              "more than an observer may hold" );

   // Members that come and go.
   Bytes const changes = streamOf( original, [&] {
      for ( U64 vlan = 0; vlan < 300; ++vlan ) {
         original.vlans().mrpAttributeDel( vlan );
         original.vlans().mrpAttributeIs( vlan + 100 );
      }
   } );
   EXPECT_EQ( errorOf( changes, ( members + 1 ) * Input::memberBytes ), "" );

   // Entities that are made known and never get a place.
   Bytes orphans( whole.begin(), whole.begin() + greetingBytes );
   for ( std::size_t at = greetingBytes, end; at < whole.size(); at = end ) {
      end = at + lengthBytes + number( whole, at, lengthBytes );
      if ( number( whole, at + 12, 2 ) == orphanAttr ) {
         put( orphans, Bytes( whole.data() + at, whole.data() + end ) );
      }
   }
   EXPECT_EQ( errorOf( orphans ), "" );
   EXPECT_EQ( errorOf( orphans, members * Input::memberBytes ), "more than an observer may hold" );
}

} // namespace
} // namespace TestSupport
