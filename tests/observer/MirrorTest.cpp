// A mirror at the end of a stream: whenever the stream is idle it equals the original, whatever has
// happened on the way.
#include "tests/support/MirrorLine.h"
#include "tests/support/Random.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using namespace Mrp;

struct Original {
   Original() {
      mounts.statusIs( status );
      mounts.configIs( config );
      mounts.countersIs( counters );
      mounts.parseContextIs( context );
   }
   std::string text() const {
      return treeText( *status ) + treeText( *config ) + treeText( *counters ) +
             treeText( *context );
   }
   Korv::Ptr< MrpStatus > status{ new MrpStatus( "status" ) };
   Korv::Ptr< MrpConfig > config{ new MrpConfig( "config" ) };
   Korv::Ptr< MrpCounters > counters{ new MrpCounters( "counters" ) };
   Korv::Ptr< MrpParseContext > context{ new MrpParseContext( "context" ) };
   AttrLogMounts mounts;
};

std::string textOf( MrpObserver::Mirror const & mirror ) {
   return treeText( mirror.status() ) + treeText( mirror.config() ) +
          treeText( mirror.counters() ) + treeText( mirror.parseContext() );
}

// Any change of anything that is published.
void change( Original & original, Random & random ) {
   Pelk::IntfId const intf( "e" + std::to_string( random.below( 4 ) ) );
   auto const type = static_cast< U8 >( 1 + random.below( 3 ) );
   U64 const key = random.below( 12 );
   auto * const database = original.status->applicationIs( random.below( 2 ) ? MSRP : MVRP );
   auto * const types = database->attrDatabaseIs( intf );
   auto * const attributes = types->intfTypeApplicantIs( type );
   auto const byte = static_cast< U8 >( random.below( 5 ) );
   switch ( random.below( 24 ) ) {
   case 0: return original.status->applicationDel( MSRP );
   case 1: return database->attrDatabaseDel( intf );
   case 2: return types->intfTypeApplicantDel( type );
   case 3: return attributes->mrpAttributeDelAll();
   case 4: return database->leaveAllTimeDel( { intf, type } );
   case 5: return original.config->intfLeaveTimeIs( intf, random.below( 5 ) );
   case 6: return original.config->intfLeaveTimeDel( intf );
   case 7: return original.config->mrpFloodingIs( random.below( 2 ) == 0 );
   case 8: return original.counters->numOfPktsProcessedInc( 1 );
   case 9: return original.context->attributeKeyIs( random.next() );
   case 10: return original.context->intfIdIs( intf );
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
   case 4: return attribute.attributeValueMetadataIs( { byte, static_cast< U8 >( byte * 3 ) } );
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
         switch ( random.below( 12 ) ) {
         case 0: line.moveAll(); break;
         case 1:
         case 2:
         case 3: line.move( random.below( 300 ) ); break;
         case 4: line.root( random.below( 4 ) ).suspendedIs( random.below( 2 ) == 0 ); break;
         case 5:
            if ( random.below( 10 ) == 0 ) {
               line.connect();
            }
            break;
         default: break;
         }
      }
      for ( std::size_t root = 0; root < 4; ++root ) {
         line.root( root ).suspendedIs( false );
      }
      line.output().doFlowOut();
      line.moveAll();
      ASSERT_EQ( textOf( line.mirror() ), original.text() ) << "seed " << seed;
   }
}

// Behind a span that runs over the end of the ring: not what stands there anyway.
TEST( Mirror, takesAZeroForAByte ) {
   Original original;
   auto * const vlans = original.status->applicationIs( MVRP )
                           ->attrDatabaseIs( Pelk::IntfId( "e1" ) )
                           ->intfTypeApplicantIs( 1 );
   vlans->mrpAttributeIs( 10 )->attributeValueMetadataIs( { 64, 2 } );
   MirrorLine line( original.mounts );
   line.moveAll();
   vlans->mrpAttribute( 10 )->attributeValueEnq( 0 );
   line.moveAll();
   EXPECT_EQ( textOf( line.mirror() ), original.text() );
}

struct Watcher : MrpAttrDatabase::Reactor {
   void onApplicantState() override { ++changes; }
   int changes = 0;
};

// A watcher hears of what has changed, also across connections.
TEST( Mirror, keepsItsEntitiesFromStreamToStream ) {
   Original original;
   auto * const vlans = original.status->applicationIs( MVRP )
                           ->attrDatabaseIs( Pelk::IntfId( "e1" ) )
                           ->intfTypeApplicantIs( 1 );
   vlans->mrpAttributeIs( 10 )->applicantStateIs( mrpQuietActive );
   vlans->mrpAttributeIs( 11 );
   MirrorLine line( original.mounts );
   line.moveAll();
   auto * const mirrored = line.mirror()
                              .status()
                              .application( MVRP )
                              ->attrDatabase( Pelk::IntfId( "e1" ) )
                              ->intfTypeApplicant( 1 );
   Watcher watcher;
   watcher.notifierIs( mirrored->mrpAttribute( 10 ) );
   line.connect();
   line.moveAll();
   EXPECT_EQ( watcher.changes, 0 );
   vlans->mrpAttributeDel( 11 );
   vlans->mrpAttribute( 10 )->applicantStateIs( mrpAnxiousActive );
   line.connect(); // what was said on the old one is lost
   line.moveAll();
   EXPECT_EQ( watcher.changes, 1 );
   EXPECT_EQ( mirrored->mrpAttribute().size(), 1u );
}

Bytes streamOf( Original const & original ) {
   Korv::NboAttrLog::Output output( 1 << 20 );
   auto const adapters = original.mounts.mount( output );
   return { output.front().begin(), output.front().end() };
}

std::string errorOf( Bytes const & bytes ) {
   MrpObserver::Mirror mirror;
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
   EXPECT_EQ( errorOf( { 'H', 'T', 'T', 'P', '/', '1', '.', '1', ' ', '2', '0', '0' } ),
              "not a mirror stream" );
   Bytes version = whole;
   version[9] = 2;
   EXPECT_EQ( errorOf( version ), "a stream of another version" );
   // Any byte changed: applied, or an error, and never worse.
   U32 errors = 0;
   for ( int i = 0; i < 3000; ++i ) {
      Bytes broken = whole;
      broken[random.below( broken.size() )] ^= static_cast< U8 >( 1 + random.below( 255 ) );
      errors += errorOf( broken ).empty() ? 0 : 1;
   }
   EXPECT_GT( errors, 1000u );
}

// Entities that are made known and never get a place.
TEST( Mirror, hasAnEndToWhatItKeeps ) {
   using namespace Korv::NboAttrLog;
   Output output;
   std::vector< U8 > const key( 200'000 );
   for ( int i = 0; i < 400; ++i ) {
      U64 const identifier = output.newIdentifier();
      std::size_t const sections = 3 * 5 + 3 + key.size() + 8;
      ByteWriter writer = output.nextHeaderIs( identifier, orphanAttr, plain, 2 + sections );
      writer.put( tokenBegin );
      writer.put( sectionTypeName );
      writer.put( U32{ 2 + 1 } );
      writer.put( std::string_view( "T" ) );
      writer.put( sectionKey );
      writer.put( static_cast< U32 >( key.size() ) );
      writer.append( key.data(), key.size() );
      writer.put( sectionIdentifier );
      writer.put( U32{ 8 } );
      writer.put( identifier );
      writer.put( tokenEnd );
      output.messageEnd();
   }
   auto const front = output.front();
   EXPECT_EQ( errorOf( Bytes( front.begin(), front.begin() + 60'000'000 ) ), "" );
   EXPECT_EQ( errorOf( Bytes( front.begin(), front.end() ) ), "too many entities without a place" );
}

} // namespace
} // namespace TestSupport
