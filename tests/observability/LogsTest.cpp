// Log handles, traces and the ring buffer, as their sinks see them.
#include "mrp/observability/Logs.h"

#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/pelk/IntfId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <vector>

namespace Mrp {
namespace {

std::vector< std::string > lines_;

TEST( Logs, keysPrintInDecimalAndSigned ) {
   EXPECT_EQ( hexStr( 255 ), "255" );
   EXPECT_EQ( hexStr( std::numeric_limits< Korv::U64 >::max() ), "-1" );
   EXPECT_EQ( hexStr( Korv::U64{ 1 } << 63 ), "-9223372036854775808" );
}

TEST( Logs, fieldsStandInTheHandlesFormat ) {
   std::string const state = "mrpIn";
   mrpLog( MRP_ERROR, state ); // nobody listens
   Korv::logSinkIs( []( Korv::LogHandle const & handle, std::string const & text ) {
      lines_.push_back( std::string( handle.name() ) + ": " + text );
   } );
   mrpLog( MRP_JOIN, std::string( "et1" ), std::string( "1" ), hexStr( 7 ), state,
           std::string( "regNew" ) );
   mrpLog( MRP_LV, std::string( "notified" ), std::string( "et1" ), std::string( "1" ), hexStr( 7 ),
           state, std::string( "regLv" ) );
   mrpLog( MRP_ERROR, std::string( "100%s" ) );
   Korv::logSinkIs( nullptr );
   EXPECT_EQ( lines_,
              ( std::vector< std::string >{
                 "MRP_JOIN: MRP Join received on et1, attrType: 1, key: 7, state: mrpIn, event: "
                 "regNew",
                 "MRP_LV: MRP Lv notified on et1, attrType: 1, key: 7, state: mrpIn, event: regLv",
                 "MRP_ERROR: 100%s" } ) );
   lines_.clear();
}

// Counts how often it is printed.
struct Part {
   int * printed;
};
std::ostream & operator<<( std::ostream & out, Part const & part ) {
   ++*part.printed;
   return out << "part";
}

TEST( Trace, composesOnlyLevelsThatAreOn ) {
   Korv::traceSinkIs( []( Korv::TraceHelper const &, Korv::U32, Korv::SourceLocation where,
                          std::string const & text ) {
      lines_.push_back( text + ' ' + std::to_string( where.line ) );
   } );
   mrpTrace.levelsIs( 1u << 4 );
   EXPECT_TRUE( traceIsOn( 4 ) );
   EXPECT_FALSE( traceIsOn( 8 ) );
   int printed = 0;
   Part const part{ &printed };
   trace( 8, part );
   Korv::U32 const line = __LINE__ + 1;
   trace( 4, "at ", 1234567.1, " type = ", Korv::U8{ 65 }, ", ", Pelk::IntfId( "et1" ), part );
   mrpTrace.levelsIs( 0 );
   trace( 4, part );
   Korv::traceSinkIs( nullptr );
   EXPECT_EQ( printed, 1 );
   EXPECT_EQ( lines_, ( std::vector< std::string >{ "at 1234567.1 type = 65, et1part " +
                                                    std::to_string( line ) } ) );
   lines_.clear();
}

class RecordingFile : public Sornlog::File {
 public:
   RecordingFile() { Sornlog::fileIs( this ); }
   ~RecordingFile() override { Sornlog::fileIs( nullptr ); }
   void write( Sornlog::Site const & site,
               std::span< Sornlog::Argument const > arguments ) override {
      lines.push_back( Sornlog::text( site, arguments ) );
      codes.clear();
      for ( auto const & argument : arguments ) {
         codes += argument.code;
      }
   }
   std::vector< std::string > lines;
   std::string codes;
};

TEST( Ring, argumentsStandInTheirMessage ) {
   Sornlog::log( Ring::flushOccurred ); // no file
   RecordingFile file;
   Sornlog::log( Ring::joinDiscarded, Pelk::IntfId( "et1" ), Korv::U8{ 3 }, Korv::U8{ 1 } );
   EXPECT_EQ( file.codes, Ring::joinDiscarded.arguments );
   Sornlog::log( Ring::packetAllocationFailed, "et1", Korv::U8{ 1 }, Korv::U8{ 255 }, true );
   EXPECT_EQ( file.codes, Ring::packetAllocationFailed.arguments );
   Sornlog::log( Ring::ioctlFailed, -25 );
   EXPECT_EQ( file.codes, Ring::ioctlFailed.arguments );
   Sornlog::log( Ring::flushOccurred );
   EXPECT_EQ( file.lines,
              ( std::vector< std::string >{
                 "Join was discarded by MSRP, interface: et1, attrType: 3, attrEvent: 1",
                 "Packet allocation failed for et1, 1, 255, true", "ioctl failed with -25",
                 "Flush! event occurred" } ) );
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
