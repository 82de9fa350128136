// Writes the seeds of the fuzzers, a file each, into FOLDER/NAME for fuzz-NAME. Those of mvrp and
// msrp are the frames of the builder, each at work in a small story.
#include "mrp/vocabulary/Mrp.h"
#include "mrp/vocabulary/MrpMsrp.h"

#include "tests/fuzz/script/Script.h"
#include "tests/fuzz/seeds/Corpus.h"

#include <iostream>

namespace {

using namespace TestSupport;
using Fuzz::Corpus;
using Fuzz::Step;

// A script, step by step.
class Script {
 public:
   explicit Script( U8 flags = 0 ) : bytes_{ flags } {}

   Script & on( unsigned interface ) {
      interface_ = static_cast< U8 >( interface << 4 );
      return *this;
   }
   template < class... Number >
   Script & step( Step step, Number... arguments ) {
      bytes_.push_back( static_cast< U8 >( interface_ | static_cast< U8 >( step ) ) );
      ( bytes_.push_back( static_cast< U8 >( arguments ) ), ... );
      return *this;
   }
   Script & wait( double seconds ) { return step( Step::wait, seconds / 0.05 ); }
   Script & frame( Bytes const & frame ) { return withBytes( Step::frame, frame ); }
   // The frame without its header.
   Script & mrpdu( Bytes const & frame ) {
      return withBytes( Step::mrpdu, Bytes( frame.begin() + 14, frame.end() ) );
   }
   Script & declare( unsigned type, unsigned event, unsigned key, unsigned queued = 1 ) {
      return step( Step::declare, type, event, key >> 8, key, queued );
   }

   operator Bytes const &() const { return bytes_; }

 private:
   Script & withBytes( Step with, Bytes const & frame ) {
      step( with, frame.size() >> 8, frame.size() );
      put( bytes_, frame );
      return *this;
   }

   Bytes bytes_;
   U8 interface_ = 0;
};

// What both applications have in common: `frame( event )` registers or ends two attributes with
// the keys `key` and key + 1.
template < class MakeFrame >
void addStories( Corpus const & corpus, MakeFrame frame, Bytes const & leaveAll, unsigned type,
                 unsigned key ) {
   Bytes const join = frame( JoinIn );
   corpus.add( "join", Script().mrpdu( join ).wait( 1 ) );
   corpus.add( "join-leave", Script().mrpdu( join ).wait( 0.5 ).mrpdu( frame( Lv ) ).wait( 2 ) );
   corpus.add( "leave-and-rejoin", Script()
                                      .mrpdu( frame( New ) )
                                      .wait( 0.2 )
                                      .mrpdu( frame( Lv ) )
                                      .wait( 0.3 )
                                      .mrpdu( frame( JoinMt ) )
                                      .wait( 2 ) );
   corpus.add( "leave-all", Script().mrpdu( join ).wait( 0.2 ).mrpdu( leaveAll ).wait( 2 ) );
   corpus.add( "leave-all-before-commit",
               Script().mrpdu( join ).mrpdu( leaveAll ).mrpdu( join ).wait( 2 ) );
   corpus.add( "own-leave-all",
               Script().mrpdu( join ).wait( 11 ).mrpdu( join ).step( Step::leaveAll ).wait( 2 ) );
   corpus.add( "declared", Script()
                              .declare( type, 0, key, 7 )
                              .wait( 0.2 )
                              .mrpdu( frame( Mt ) )
                              .declare( type, 5, key )
                              .wait( 0.3 ) );
   corpus.add( "declared-by-events", Script()
                                        .declare( type, 1, key, 3 )
                                        .declare( type, 3, key + 1, 1 )
                                        .declare( type, 6, 0, 7 )
                                        .declare( type, 7, key )
                                        .wait( 1 ) );
   corpus.add( "propagated", Script()
                                .step( Step::behave, 1 )
                                .mrpdu( join )
                                .on( 1 )
                                .mrpdu( frame( In ) )
                                .on( 0 )
                                .mrpdu( frame( Lv ) )
                                .wait( 3 ) );
   corpus.add( "refused",
               Script().step( Step::behave, 0x10 ).mrpdu( join ).wait( 1 ).mrpdu( join ) );
   corpus.add( "cleaned-up-when-told", Script().step( Step::behave, 2 ).mrpdu( join ).wait( 1 ) );
   corpus.add( "switched-off-when-told", Script().step( Step::behave, 3 ).mrpdu( join ).wait( 1 ) );
   corpus.add( "cleaned-up", Script()
                                .mrpdu( join )
                                .wait( 0.2 )
                                .mrpdu( leaveAll )
                                .step( Step::cleanUp )
                                .mrpdu( join )
                                .wait( 2 )
                                .step( Step::cleanUpOne, type, key >> 8, key )
                                .mrpdu( join ) );
   corpus.add( "off-and-on", Script()
                                .mrpdu( join )
                                .wait( 1 )
                                .step( Step::disable )
                                .step( Step::enable )
                                .mrpdu( join )
                                .step( Step::unplug )
                                .wait( 1 )
                                .step( Step::plugIn )
                                .mrpdu( join ) );
   corpus.add( "flooded", Script()
                             .mrpdu( join )
                             .step( Step::configure, 5, 1 )
                             .mrpdu( join )
                             .step( Step::configure, 5, 0 ) );
   corpus.add( "short-times", Script()
                                 .step( Step::configure, 0, 1 )
                                 .step( Step::configure, 1, 2 )
                                 .mrpdu( join )
                                 .mrpdu( leaveAll )
                                 .wait( 3 ) );
   corpus.add( "standby", Script( Fuzz::inStandby )
                             .mrpdu( join )
                             .mrpdu( frame( Lv ) )
                             .mrpdu( leaveAll )
                             .step( Step::endStandby )
                             .mrpdu( join )
                             .wait( 2 ) );
   corpus.add( "no-status-entries", Script( Fuzz::noStatusEntries ).mrpdu( join ).wait( 1 ) );
   corpus.add( "recycled", Script().step( Step::recycled ).mrpdu( join ).mrpdu( leaveAll ) );
   corpus.add( "message", Script()
                             .step( Step::message, type, 0, key >> 8, key, 4, 1, 2, 0x43, 0x84 )
                             .wait( 1 )
                             .step( Step::message, type, 3, key >> 8, key, 1, 5 )
                             .wait( 2 ) );
}

void writeMvrp( Corpus const & corpus ) {
   auto const frame = []( Event event ) { return mvrpFrame( vlans( 10, { event, event } ) ); };
   addStories(
      corpus, [&]( Event event ) { return frame( event ).bytes(); },
      mvrpFrame( vlanLeaveAll() ).bytes(), vlanType, 10 );
   // Longer than a row of the ordered maps; inputs much longer than the seeds are slow.
   corpus.add( "many-vlans",
               Script()
                  .mrpdu( mvrpFrame( vlans( 1, std::vector< Event >( 150, JoinIn ) ) ).bytes() )
                  .wait( 1 ) );
   corpus.add( "tagged", Script().frame( frame( JoinIn ).tag( 5 ).bytes() ).wait( 1 ) );
   corpus.add( "tagged-twice", Script().frame( frame( JoinIn ).tag( 5 ).tag( 6 ).bytes() ) );
   corpus.add( "wrong-address", Script().frame( frame( JoinIn ).to( 0x0180'c200'0000 ).bytes() ) );
   corpus.add( "wrong-type", Script().frame( frame( JoinIn ).type( 0x0800 ).bytes() ) );
   corpus.add( "future-version", Script().mrpdu( frame( JoinIn ).version( 3 ).bytes() ) );
   corpus.add( "future-type",
               Script().mrpdu( mvrpFrame( Message( 9, 3, fromHex( "0004 010203 0102 0000" ) ),
                                          vlans( 7, { New } ) )
                                  .version( 1 )
                                  .bytes() ) );
   corpus.add( "skip-without-a-step",
               Script().mrpdu( mvrpFrame( Message( 9, 254, {} ) ).version( 1 ).bytes() ) );
   corpus.add( "unknown-type", Script().mrpdu( mvrpFrame( Message( 0, 0, {} ) ).bytes() ) );
   corpus.add(
      "several-vectors",
      Script().mrpdu( mvrpFrame( message( vlans( 5, { JoinIn, Lv } ),
                                          vlans( 100, { In, Mt, New, JoinMt } ).leaveAll() ) )
                         .bytes() ) );
   corpus.add(
      "events-over-215",
      Script().mrpdu( mvrpFrame( vlans( 5, { New, New, New } ).eventBytes( { 255 } ) ).bytes() ) );
   corpus.add( "more-values-than-bytes",
               Script().mrpdu( mvrpFrame( vlans( 5, { New } ).header( 0x1FFF ) ).bytes() ) );
   corpus.add( "no-end-marks",
               Script().mrpdu(
                  mvrpFrame( message( vlans( 5, { New } ) ).noEndMark() ).noEndMark().bytes() ) );
   corpus.add( "cut", Script().mrpdu( frame( JoinIn ).cut( 6 ).bytes() ) );
}

void writeMsrp( Corpus const & corpus ) {
   constexpr U64 first = 0x0011'2233'4455'0010;
   auto const all = []( Event event ) {
      return msrpFrame( talkers( first, { event, event } ),
                        failedTalkers( { talker( first + 0x100 ) }, { event } ),
                        listeners( first, { { event, Ready }, { event, AskingFailed } } ),
                        domains( { 5, 2, 2 }, { event, event } ) );
   };
   addStories(
      corpus, [&]( Event event ) { return all( event ).bytes(); },
      msrpFrame( msrpLeaveAll( talkerType ), msrpLeaveAll( failedType ),
                 msrpLeaveAll( listenerType ), msrpLeaveAll( domainType ) )
         .bytes(),
      talkerType, 0x10 );
   for ( U8 const type : { failedType, listenerType, domainType } ) {
      corpus.add( "declared-type-" + std::to_string( type ), Script()
                                                                .declare( type, 0, 5, 7 )
                                                                .declare( type, 1, 6, 7 )
                                                                .wait( 0.2 )
                                                                .declare( type, 5, 5 ) );
   }
   corpus.add( "lower-type-last",
               Script().declare( 4, 0, 5 ).declare( 1, 0, 0x10 ).declare( 3, 0, 0x10 ) );
   corpus.add( "many-listeners",
               Script()
                  .mrpdu( msrpFrame( listeners( first, std::vector< ListenerEvent >(
                                                          200, { JoinIn, Ready } ) ) )
                             .bytes() )
                  .wait( 1 ) );
   corpus.add(
      "changed-value",
      Script()
         .mrpdu( msrpFrame( talkers( first, { JoinIn } ) ).bytes() )
         .wait( 1 )
         .mrpdu( msrpFrame( talkers( { .streamId = first, .dmac = 1, .priorityAndRank = 0x7F },
                                     { JoinIn } ) )
                    .bytes() ) );
   corpus.add( "future-version", Script().mrpdu( all( JoinIn ).version( 3 ).bytes() ) );
   corpus.add( "future-type",
               Script().mrpdu( msrpFrame( Message( 9, 3, fromHex( "0004 010203 0102 0000" ) ),
                                          talkers( first, { New } ) )
                                  .version( 1 )
                                  .bytes() ) );
   corpus.add(
      "list-length-65535",
      Script().mrpdu( msrpFrame( Message( 9, 3, {} ).listLength( 65535 ) ).version( 1 ).bytes() ) );
   corpus.add( "list-length-off",
               Script().mrpdu(
                  msrpFrame( message( talkers( first, { New } ) ).listLengthOff( 1 ) ).bytes() ) );
   corpus.add(
      "list-length-0",
      Script().mrpdu( msrpFrame( message( talkers( first, { New } ) ).listLength( 0 ) ).bytes() ) );
   corpus.add( "unknown-type", Script().mrpdu( msrpFrame( Message( 0, 0, { 0, 0 } ) ).bytes() ) );
   corpus.add( "more-values-than-bytes",
               Script().mrpdu(
                  msrpFrame( listeners( first, { { New, Ready } } ).header( 0x3FFF ) ).bytes() ) );
   corpus.add( "cut", Script().mrpdu( all( JoinIn ).cut( 30 ).bytes() ) );
}

void writeText( Corpus const & corpus ) {
   using namespace Mrp;
   MsrpTalkerAdvertiseAttribute const talker( 1, { { 0x91, 0xE0, 0xF0, 0, 0xFE, 0x0A }, 2 },
                                              { 1500, 3 }, { 5, true }, 4000000000 );
   auto const add = [&]( std::string const & name, auto const & value ) {
      corpus.add( name, Korv::toText( value ) );
   };
   add( "talker", talker );
   add( "failed", MsrpTalkerFailedAttribute( talker, { 32768, 7 } ) );
   add( "listener", MsrpListenerAttribute( 1, askingFailed ) );
   add( "domain", MsrpDomainAttribute( 6, 3, 2 ) );
   add( "frame-parameters", talker.frame() );
   add( "tspec", talker.tSpec() );
   add( "failure", FailureInformation( 1, 8 ) );
   add( "address", talker.frame().dmac() );
   add( "attribute", MrpAttribute( Pelk::IntfId( "e1" ), 1, 10 ) );
   add( "parameters", MrpParameters( Pelk::IntfId( "e1" ), 1, 5 ) );
   add( "parsed-key", MrpParsedAttributeKey( 4, 6 ) );
   add( "leave-all-key", MrpLeaveAllKey( Pelk::IntfId( "e1" ), 2 ) );
   add( "attr-iter-key", MrpAttrIterKey( Pelk::IntfId(), 2 ) );
   add( "state", mrpQuietActive );
   corpus.add( "number", "4094" );
   corpus.add( "number-of-64-bits", "18446744073709551615" );
   corpus.add( "number-over-64-bits", "18446744073709551616" );
}

} // namespace

int main( int argc, char ** argv ) {
   if ( argc != 2 ) {
      std::cerr << "usage: fuzz-seeds FOLDER\n";
      return 2;
   }
   std::filesystem::path const folder = argv[1];
   writeMvrp( Corpus( folder / "mvrp" ) );
   writeMsrp( Corpus( folder / "msrp" ) );
   writeText( Corpus( folder / "text" ) );
   Fuzz::writeStreams( Corpus( folder / "observer" ) );
   Fuzz::writeRingFiles( Corpus( folder / "ring_file" ) );
}
