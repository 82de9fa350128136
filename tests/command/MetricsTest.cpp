// What a monitoring system scrapes.
#include "command/report/Metrics.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

namespace {

using ::testing::IsSupersetOf;
using Samples = std::map< std::string, double >;

struct MetricsTest : ::testing::Test {
   MetricsTest() : status( new Mrp::MrpStatus( "s" ) ), config( new Mrp::MrpConfig( "c" ) ) {
      status->applicationIs( Mrp::MVRP );
   }
   Mrp::MrpIntfTypeApplicant & vlans( char const * interface ) {
      return *status->application( Mrp::MVRP )
                 ->attrDatabaseIs( Pelk::IntfId( interface ) )
                 ->intfTypeApplicantIs( 1 );
   }
   std::string text() const {
      return Command::metricsText( Mrp::MVRP, *status, *counters, *config );
   }
   // Each sample under its name and labels; each name has been announced, once and of a type that
   // its ending calls for.
   Samples samples() const {
      Samples all;
      std::map< std::string, std::string > types;
      std::istringstream in( text() );
      for ( std::string line; std::getline( in, line ); ) {
         std::istringstream words( line );
         std::string hash, kind, name, type;
         if ( line.starts_with( "# TYPE " ) ) {
            words >> hash >> kind >> name >> type;
            EXPECT_TRUE( types.emplace( name, type ).second ) << line;
            EXPECT_EQ( type == "counter", name.ends_with( "_total" ) ) << line;
         } else if ( !line.starts_with( "# HELP " ) ) {
            auto const blank = line.rfind( ' ' );
            EXPECT_TRUE( types.contains( line.substr( 0, line.find( '{' ) ) ) ) << line;
            EXPECT_TRUE(
               all.emplace( line.substr( 0, blank ), std::stod( line.substr( blank ) ) ).second )
               << line;
         }
      }
      return all;
   }

   Korv::Ptr< Mrp::MrpStatus > status;
   Korv::Ptr< Mrp::MrpConfig > config;
   Korv::Ptr< Mrp::MrpCounters > counters{ new Mrp::MrpCounters( "n" ) };
};

TEST_F( MetricsTest, EachOfTheTenCountersIsThere ) {
   counters->numOfPktsProcessedIs( 18446744073709551615u );
   EXPECT_THAT( text(), ::testing::HasSubstr( "\nmrp_frames_received_total{application=\"mvrp\"} "
                                              "18446744073709551615\n" ) );
   // Each with a number of its own, and all numbers come out.
   double next = 1;
   std::set< double > given, seen;
   Korv::forEachScalar( *counters, [&]( char const *, auto const & ) { given.insert( next++ ); } );
   counters->numOfIncorrectPduVersionIs( 1 );
   counters->numOfUnknownAttributeTypeIs( 2 );
   counters->numOfMalformedPktsIs( 3 );
   counters->numOfUnknownApplicationIs( 4 );
   counters->numOfIncorrectDmacIs( 5 );
   counters->numOfIncorrectEtypeIs( 6 );
   counters->numOfPktsProcessedIs( 7 );
   counters->numOfPktsTransmittedIs( 8 );
   counters->numOfJoinIndicationsIs( 9 );
   counters->numOfLeaveIndicationsIs( 10 );
   for ( auto const & [name, value] : samples() ) {
      if ( name.find( "_total{" ) != name.npos ) {
         seen.insert( value );
      }
   }
   EXPECT_EQ( seen, given );
   EXPECT_THAT( samples(), IsSupersetOf( Samples{
                              { "mrp_incorrect_destinations_total{application=\"mvrp\"}", 5 },
                              { "mrp_leave_indications_total{application=\"mvrp\"}", 10 } } ) );
}

TEST_F( MetricsTest, AttributesAreCountedByStateAndNotNamed ) {
   auto const fill = [&]( Korv::U64 first, Korv::U64 last ) {
      for ( Korv::U64 vlan = first; vlan <= last; ++vlan ) {
         vlans( "eth0" ).mrpAttributeIs( vlan )->registrarStateIs( vlan % 2 ? Mrp::mrpIn
                                                                            : Mrp::mrpMt );
         vlans( "eth0" ).mrpAttribute( vlan )->applicantStateIs( Mrp::mrpQuietActive );
      }
   };
   fill( 1, 3 );
   vlans( "a\"b\\c" );
   auto const few = samples();
   std::string const eth0 = "{application=\"mvrp\",interface=\"eth0\",type=\"VLAN\",state=";
   EXPECT_THAT( few,
                IsSupersetOf( Samples{ { "mrp_registrar_attributes" + eth0 + "\"IN\"}", 2 },
                                       { "mrp_registrar_attributes" + eth0 + "\"MT\"}", 1 },
                                       { "mrp_registrar_attributes" + eth0 + "\"LV\"}", 0 },
                                       { "mrp_applicant_attributes" + eth0 + "\"QA\"}", 3 },
                                       { "mrp_applicant_attributes{application=\"mvrp\",interface="
                                         "\"a\\\"b\\\\c\",type=\"VLAN\",state=\"QA\"}",
                                         0 } } ) );
   fill( 4, 4094 );
   EXPECT_EQ( samples().size(), few.size() );
}

TEST_F( MetricsTest, TimesAreInSeconds ) {
   config->leaveTimeIs( 0.6 );
   config->intfLeaveAllTimeIs( Pelk::IntfId( "eth1" ), 30 );
   status->application( Mrp::MVRP )->leaveAllTimeIs( { Pelk::IntfId( "eth0" ), 1 }, 12.5 );
   EXPECT_THAT(
      samples(),
      IsSupersetOf( Samples{
         { "mrp_leave_time_seconds{application=\"mvrp\"}", 0.6 },
         { "mrp_leave_all_time_seconds{application=\"mvrp\"}", 10 },
         { "mrp_interface_leave_all_time_seconds{application=\"mvrp\",interface=\"eth1\"}", 30 },
         { "mrp_leave_all_period_seconds{application=\"mvrp\",interface=\"eth0\",type="
           "\"VLAN\"}",
           12.5 } } ) );
}

} // namespace
