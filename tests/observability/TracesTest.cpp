// Traces and the ring buffer, as their sinks see them. What is logged is told where it happens.
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/pelk/IntfId.h"

#include "tests/support/Capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace Mrp {
namespace {

using Lines = std::vector< std::string >;

// Counts how often it is printed.
struct Part {
   int * printed;
};
std::ostream & operator<<( std::ostream & out, Part const & part ) {
   ++*part.printed;
   return out << "part";
}

Lines lines_;

TEST( Trace, composesOnlyLevelsThatAreOn ) {
   Korv::traceSinkIs( []( Korv::TraceHelper const &, Korv::U32, Korv::SourceLocation where,
                          std::string const & text ) {
      lines_.push_back( text + ' ' + std::to_string( where.line ) );
   } );
   mrpTrace.levelsIs( 1u << 4 );
   int printed = 0;
   Part const part{ &printed };
   trace( 8, part );
   std::string const line = std::to_string( __LINE__ + 1 );
   trace( 4, "at ", 1234567.1, " type = ", Korv::U8{ 65 }, ", ", Pelk::IntfId( "et1" ), part );
   mrpTrace.levelsIs( 0 );
   trace( 4, part );
   Korv::traceSinkIs( nullptr );
   EXPECT_EQ( printed, 1 );
   EXPECT_EQ( lines_, Lines{ "at 1234567.1 type = 65, et1part " + line } );
}

TEST( Ring, argumentsStandInTheirMessage ) {
   TestSupport::RingCapture ring;
   Sornlog::log( Ring::joinDiscarded, Pelk::IntfId( "et1" ), Korv::U8{ 3 }, Korv::U8{ 1 } );
   Sornlog::log( Ring::packetAllocationFailed, "et1", Korv::U8{ 1 }, Korv::U8{ 255 }, true );
   Sornlog::log( Ring::ioctlFailed, -25 );
   EXPECT_EQ(
      ring.taken(),
      ( Lines{ "Join was discarded by MSRP, interface: et1, attrType: 3, attrEvent: 1",
               "Packet allocation failed for et1, 1, 255, true", "ioctl failed with -25" } ) );
}

TEST( Ring, sitesAreOfSoundShape ) {
   std::set< std::string > messages;
   for ( Sornlog::Site const * site : Ring::all ) {
      std::string const message = site->message;
      std::string const arguments = site->arguments;
      EXPECT_TRUE( messages.insert( message ).second ) << message;
      EXPECT_LE( std::count( message.begin(), message.end(), '%' ),
                 static_cast< std::ptrdiff_t >( arguments.size() ) );
      EXPECT_EQ( arguments.find_first_not_of( "icpb" ), std::string::npos ) << message;
      EXPECT_TRUE( site->level >= 2 && site->level <= 8 ) << message;
   }
}

} // namespace
} // namespace Mrp
