// What a monitoring system scrapes.
#include "command/report/Metrics.h"

#include <gmock/gmock.h>

#include <sstream>

namespace {

using ::testing::IsSupersetOf;
using Lines = std::vector< std::string >;

struct MetricsTest : ::testing::Test {
   // Has so many VLANs, from 1 on; every other one is registered.
   void fill( char const * interface, Korv::U64 count ) {
      auto & type = *status->applicationIs( Mrp::MVRP )
                        ->attrDatabaseIs( Pelk::IntfId( interface ) )
                        ->intfTypeApplicantIs( 1 );
      for ( Korv::U64 vlan = 1; vlan <= count; ++vlan ) {
         auto const attribute = type.mrpAttributeIs( vlan );
         attribute->registrarStateIs( vlan % 2 ? Mrp::mrpIn : Mrp::mrpMt );
         attribute->applicantStateIs( Mrp::mrpQuietActive );
      }
   }
   // The samples, with the labels of the application left out.
   Lines samples() const {
      std::string const application = "application=\"mvrp\"";
      Lines lines;
      std::istringstream in( Command::metricsText( Mrp::MVRP, *status, *counters, *config ) );
      for ( std::string line; std::getline( in, line ); ) {
         if ( !line.starts_with( '#' ) ) {
            lines.push_back( line.erase( line.find( application ), application.size() ) );
         }
      }
      return lines;
   }

   Korv::Ptr< Mrp::MrpStatus > status{ new Mrp::MrpStatus( "s" ) };
   Korv::Ptr< Mrp::MrpConfig > config{ new Mrp::MrpConfig( "c" ) };
   Korv::Ptr< Mrp::MrpCounters > counters{ new Mrp::MrpCounters( "n" ) };
};

TEST_F( MetricsTest, TellCountersTimesInSecondsAndHowManyAttributesAreInEachState ) {
   counters->numOfPktsProcessedIs( 18446744073709551615u );
   counters->numOfPktsTransmittedIs( 2 );
   counters->numOfJoinIndicationsIs( 3 );
   counters->numOfLeaveIndicationsIs( 4 );
   counters->numOfMalformedPktsIs( 5 );
   counters->numOfIncorrectPduVersionIs( 6 );
   counters->numOfIncorrectDmacIs( 7 );
   counters->numOfIncorrectEtypeIs( 8 );
   counters->numOfUnknownAttributeTypeIs( 9 );
   counters->numOfUnknownApplicationIs( 10 );
   config->intfLeaveAllTimeIs( Pelk::IntfId( "eth1" ), 30 );
   fill( "eth0", 3 );
   fill( "a\"b\\c", 0 );
   status->application( Mrp::MVRP )->leaveAllTimeIs( { Pelk::IntfId( "eth0" ), 1 }, 12.5 );
   Lines const few = samples();
   EXPECT_THAT(
      few, IsSupersetOf(
              { R"(mrp_frames_received_total{} 18446744073709551615)",
                R"(mrp_frames_transmitted_total{} 2)", R"(mrp_join_indications_total{} 3)",
                R"(mrp_leave_indications_total{} 4)", R"(mrp_parse_failures_total{} 5)",
                R"(mrp_incorrect_versions_total{} 6)", R"(mrp_incorrect_destinations_total{} 7)",
                R"(mrp_incorrect_ethertypes_total{} 8)", R"(mrp_unknown_attribute_types_total{} 9)",
                R"(mrp_unknown_applications_total{} 10)", R"(mrp_leave_time_seconds{} 0.6)",
                R"(mrp_interface_leave_all_time_seconds{,interface="eth1"} 30)",
                R"(mrp_leave_all_period_seconds{,interface="eth0",type="VLAN"} 12.5)",
                R"(mrp_registrar_attributes{,interface="eth0",type="VLAN",state="IN"} 2)",
                R"(mrp_registrar_attributes{,interface="eth0",type="VLAN",state="MT"} 1)",
                R"(mrp_registrar_attributes{,interface="eth0",type="VLAN",state="LV"} 0)",
                R"(mrp_applicant_attributes{,interface="eth0",type="VLAN",state="QA"} 3)",
                R"(mrp_applicant_attributes{,interface="a\"b\\c",type="VLAN",state="QA"} 0)" } ) );
   // None is named.
   fill( "eth0", 4094 );
   EXPECT_EQ( samples().size(), few.size() );
}

} // namespace
