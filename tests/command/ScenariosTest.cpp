// The scripts of tests/scenarios, each with what its text leads one to expect.
//
// NAME.json is a script, NAME.expected.json what its result must have: members that are named
// must be as they are named, others may be anything. A list must have as many elements; what is
// empty must be empty. Beside its `frame` in hexadecimal a frame transmitted has what it `says`:
//
//    {"time": 0.1, "interface": "Ethernet1", "says": "vlan{10 JoinMt}"}
//
// The LeaveAll time is the one configured, without what chance adds to it.
#include "tests/command/CommandRun.h"
#include "tests/support/Decode.h"

#include <regex>

namespace CommandTest {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

fs::path const folder = "tests/scenarios";
constexpr char const * expectation = ".expected.json";

std::vector< std::string > scenarios() {
   std::vector< std::string > names;
   for ( auto const & entry : fs::directory_iterator( folder ) ) {
      std::string const name = entry.path().filename();
      if ( name.ends_with( ".json" ) && !name.ends_with( expectation ) ) {
         names.push_back( entry.path().stem() );
      }
   }
   std::sort( names.begin(), names.end() );
   return names;
}

// Where the two differ, a line each.
void differences( json const & expected, json const & actual, std::string const & place,
                  std::string & lines ) {
   if ( expected.is_structured() && expected.type() == actual.type() &&
        ( expected.is_object() ? !expected.empty() || actual.empty()
                               : expected.size() == actual.size() ) ) {
      for ( auto const & [key, value] : expected.items() ) {
         auto const found =
            expected.is_array() ? actual.begin() + std::stol( key ) : actual.find( key );
         differences( value, found == actual.end() ? json( "(missing)" ) : *found,
                      place + "/" + key, lines );
      }
   } else if ( expected != actual ) {
      lines += place + ": " + actual.dump() + ", not " + expected.dump() + "\n";
   }
}

class Scenarios : public CommandTest, public ::testing::WithParamInterface< std::string > {};

TEST_P( Scenarios, HaveTheResultExpected ) {
   json const expected = json::parse( contents( folder / ( GetParam() + expectation ) ) );
   Variable const regular( noRandomization, "1" );
   auto const outcome = mrp( "script --json " + ( folder / ( GetParam() + ".json" ) ).string() );

   EXPECT_EQ( outcome.err, "" );
   EXPECT_EQ( outcome.status, expected.contains( "aborted" ) ? 1 : 0 );
   json result = outcome.json();
   EXPECT_EQ( result.contains( "aborted" ), expected.contains( "aborted" ) );
   for ( json & frame : result["transmitted"] ) {
      frame["says"] =
         TestSupport::says( TestSupport::fromHex( frame["frame"].get< std::string >() ) );
   }
   std::string lines;
   differences( expected, result, "", lines );
   EXPECT_EQ( lines, "" );
}

std::string testName( ::testing::TestParamInfo< std::string > const & info ) {
   return std::regex_replace( info.param, std::regex( "[^A-Za-z0-9]" ), "_" );
}

INSTANTIATE_TEST_SUITE_P( All, Scenarios, ::testing::ValuesIn( scenarios() ), testName );

} // namespace

} // namespace CommandTest
