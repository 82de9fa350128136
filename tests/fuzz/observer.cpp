// The observer's reader: any bytes, in pieces, on a mirror that lives through several streams. What
// it makes of them is an error or a change of the mirror, and the mirror can be walked afterwards.
// The last word is with a proper stream, which brings the mirror to the original whatever went
// before.
#include "mrp/observability/AttrLogMounts.h"
#include "mrp/observer/Mirror.h"
#include "mrp/platform/attrlog/Output.h"

#include "tests/fuzz/script/Check.h"
#include "tests/support/TreeText.h"

#include <cstdint>

namespace {

using TestSupport::U8;

// Puts the lengths right, or the fuzzer would spend its life on them: the input is a row of
// messages, each with its length in one byte in front.
std::vector< U8 > framed( std::span< U8 const > input ) {
   Korv::NboAttrLog::Output output;
   std::vector< U8 > bytes( output.front().begin(), output.front().end() );
   while ( !input.empty() ) {
      std::size_t const size = std::min< std::size_t >( input[0], input.size() - 1 );
      bytes.resize( bytes.size() + sizeof( Korv::U32 ) );
      Korv::NboAttrLog::ByteWriter( bytes.data() + bytes.size() - sizeof( Korv::U32 ) )
         .put( static_cast< Korv::U32 >( size ) );
      bytes.insert( bytes.end(), input.begin() + 1,
                    input.begin() + 1 + static_cast< std::ptrdiff_t >( size ) );
      input = input.subspan( size + 1 );
   }
   return bytes;
}

void feed( MrpObserver::Mirror & mirror, std::span< U8 const > bytes, std::size_t piece ) {
   mirror.streamBegins();
   try {
      while ( !bytes.empty() ) {
         auto const part = bytes.first( std::min( piece, bytes.size() ) );
         mirror.handleBytes( part );
         bytes = bytes.subspan( part.size() );
      }
   } catch ( MrpObserver::StreamError const & ) {
   }
}

// The process keeps names of interfaces for good; mirrors come and go with each input.
constexpr std::size_t fewBytes = 4096;

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   if ( size < 2 || size > fewBytes ) {
      return 0;
   }
   std::span< U8 const > const input( data + 2, size - 2 );
   MrpObserver::Mirror mirror;
   feed( mirror,
         ( data[0] & 1 ) ? framed( input ) : std::vector< U8 >( input.begin(), input.end() ),
         1u + data[1] );
   TestSupport::treeText( mirror.status() );

   Korv::Ptr< Mrp::MrpStatus > const status( new Mrp::MrpStatus( "status" ) );
   status->applicationIs( Mrp::MVRP )
      ->attrDatabaseIs( Pelk::IntfId( "e" ) )
      ->intfTypeApplicantIs( 1 )
      ->mrpAttributeIs( 10 )
      ->attributeValueEnq( 7 );
   Mrp::AttrLogMounts mounts;
   mounts.statusIs( status );
   Korv::NboAttrLog::Output output;
   auto const adapters = mounts.mount( output );
   feed( mirror, output.front(), 1u + data[1] );
   Fuzz::check( TestSupport::treeText( mirror.status() ) == TestSupport::treeText( *status ),
                "the mirror is the original after a whole stream" );
   return 0;
}
