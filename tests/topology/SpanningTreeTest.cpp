// Roles of ports in the spanning tree, what they do to the attributes of an interface, and the
// objects that watch them. Roles in standby and of interfaces that nobody wants are scenarios.
#include "mrp/observability/RingSites.h"
#include "mrp/topology/SpanningTreeMirrors.h"

#include "tests/support/Capture.h"
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum Stp::MstiPortStatus::Role;
using Role = Stp::MstiPortStatus::Role;

std::string const et1 = "Ethernet1";
std::string const et2 = "Ethernet2";
Pelk::IntfId const ethernet1( et1 );
Pelk::IntfId const ethernet2( et2 );

Stp::MstiStatus * tree( Memory::Host & host, std::string const & name = "Cist" ) {
   return host.stpStatus()->stpiStatusIs( "default" )->mstiStatusIs( name );
}
void roleIs( Participant & participant, Role role, std::string const & interface = et1,
             std::string const & instance = "Cist" ) {
   tree( participant.host(), instance )->mstiPortStatusIs( interface, role );
}

// Each call of handleRole that concerns a wanted interface in its base topology, and what it leads
// to.
struct Calls : RingCapture {
   Calls()
      : RingCapture(
           { &Mrp::Ring::handleRole, &Mrp::Ring::flushOccurred, &Mrp::Ring::redeclareOccurred } ) {}
};
std::string const call1 = "MrpSm::handleRole() Ethernet1, Cist, default";
std::string const call2 = "MrpSm::handleRole() Ethernet2, Cist, default";

// VLANs 10 and 11 are registered, 10 is declared, too; 12 is about to leave. What a change of the
// role then makes of the three.
std::string registrarsAfter( Participant & mvrp, Role from, Role to ) {
   roleIs( mvrp, from );
   mvrp.receive( et1, mvrpFrame( vlans( 10, { JoinIn, JoinMt, JoinMt } ) ) );
   mvrp.declare( et1, Vlan{ 10 }, JoinIn );
   mvrp.advanceBy( 1 );
   mvrp.receive( et1, mvrpFrame( vlans( 12, { Lv } ) ) );
   roleIs( mvrp, to );
   std::string states;
   for ( U64 const vlan : { 10u, 11u, 12u } ) {
      auto const found = mvrp.attribute( et1, vlan );
      states += found ? Mrp::stringValue( found->registrar ) + ' ' : "none ";
   }
   return states;
}
std::string const flushed = "mrpMt none none ";

TEST( PortRole, flushesOrRedeclaresBetweenForwardingAndAlternate ) {
   for ( unsigned from = 0; from <= 6; ++from ) {
      for ( unsigned to = 0; to <= 6; ++to ) {
         bool const flush = ( from == 1 || from == 2 ) && to == 3;
         bool const redeclare = from == 3 && ( to == 1 || to == 2 );
         Participant mvrp( Mrp::MVRP );
         EXPECT_EQ( registrarsAfter( mvrp, Role{ from }, Role{ to } ), flush ? flushed
                                                                       : redeclare
                                                                          ? "mrpLv mrpLv mrpLv "
                                                                          : "mrpIn mrpIn mrpLv " )
            << from << " to " << to;
      }
   }
}

TEST( BaseTopology, followsModeAndNativeVlan ) {
   Participant mvrp( Mrp::MVRP );
   auto & bridge = *mvrp.host().brConfig();
   bridge.vlanConfigIs( Bridging::VlanId( 7 ) );
   struct Row {
      Korv::S32 mode;
      U16 nativeVlan; // 7 is a configured one
      char const * name;
   };
   for ( Row const & row : { Row{ 0, 7, "Cist" },
                             { 2, 4095, "Cist" },
                             { 3, 0, "Cist" },
                             { -1, 4095, "NoStp" },
                             { 100, 7, "Bkup7" },
                             { 101, 7, "Vl7" },
                             { 1, 7, "" },
                             { 102, 7, "" },
                             { 101, 8, "" },
                             { 101, 0, "" } } ) {
      mvrp.host().stpStatus()->stpModeIs( row.mode );
      bridge.switchIntfConfigIs( ethernet1 )->nativeVlanIs( row.nativeVlan );
      EXPECT_EQ( mvrp.lib().baseSpanningTreeTopo( ethernet1 ), row.name )
         << "mode " << row.mode << ", VLAN " << row.nativeVlan;
   }
}

TEST( Mirrors, comeAndGoWithTheirRecordsOfEachLevel ) {
   Participant mvrp( Mrp::MVRP, { et1, et2 } );
   Calls calls;
   roleIs( mvrp, root );
   roleIs( mvrp, root, et2 );
   roleIs( mvrp, alternate, et1, "Vl7" ); // not the base topology
   EXPECT_THAT( calls.taken(), ElementsAre( call1, call2 ) );
   roleIs( mvrp, alternate );
   roleIs( mvrp, alternate );
   EXPECT_THAT( calls.taken(), ElementsAre( call1, "Flush! event occurred" ) );
   tree( mvrp.host() )->mstiPortStatusDel( et1 );
   EXPECT_THAT( calls.taken(), ElementsAre( call1 ) );
   mvrp.host().stpStatus()->stpiStatus( "default" )->mstiStatusDel( "Cist" );
   EXPECT_THAT( calls.taken(), ElementsAre( call2 ) );
   roleIs( mvrp, alternate );
   mvrp.host().stpStatus()->stpiStatusDel( "default" );
   EXPECT_THAT( calls.taken(), ElementsAre( call1, call1 ) );
   EXPECT_TRUE( mvrp.sm().stpiStatus().empty() );
}

// An application that takes all records away when it hears of the leave.
TEST( Mirrors, mayGoWithinTheirOwnChange ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.lib().react = [&]( Indication const & indication ) {
      if ( !indication.join ) {
         mvrp.host().stpStatus()->stpiStatusDel( "default" );
      }
   };
   EXPECT_EQ( registrarsAfter( mvrp, root, alternate ), flushed );
   EXPECT_TRUE( mvrp.sm().stpiStatus().empty() );
}

// Ahead of the mirrors, puts another record in the place of one that has gone.
struct Replacer : Stp::StpiStatus::Reactor {
   explicit Replacer( Memory::Host & h ) : host( h ) {}
   void onMstiStatus( Korv::Name const & ) override {
      notifierIs( nullptr );
      tree( host )->mstiPortStatusIs( et1, alternate );
   }
   Memory::Host & host;
};

TEST( Mirrors, startAndEndWithTheParticipant ) {
   Memory::VirtualActivity const activity;
   Memory::Host host;
   tree( host )->mstiPortStatusIs( et1, root );
   Replacer replacer( host );
   replacer.notifierIs( host.stpStatus()->stpiStatus( "default" ) );
   Korv::Ptr< RecordingLib > const lib( new RecordingLib );
   auto const make = [&]( Korv::Ptr< Stp::Status const > stpStatus ) {
      return Mrp::mrpSmFactory( host.brConfig(), lib.ptr(), Mrp::mrpConfigFactory( "MrpConfig" ),
                                Mrp::mrpStatusFactory( "MrpStatus" ), stpStatus,
                                host.brTopoConfig(), host.ethPhyIntfStatusDir(), host.em(), false );
   };
   auto sm = make( host.stpStatus() );
   lib->mrpInterfaceEnable( ethernet1 );
   EXPECT_TRUE( sm->oldPortRole().empty() ); // nothing was wanted when the role was seen
   host.stpStatus()->stpiStatus( "default" )->mstiStatusDel( "Cist" );
   EXPECT_EQ( sm->oldPortRole( ethernet1 ), alternate );
   tree( host )->mstiPortStatusIs( et1, root ); // the new record is watched
   EXPECT_EQ( sm->oldPortRole( ethernet1 ), root );

   // Nobody hears of the end, and nobody watches afterwards.
   Calls calls;
   sm = nullptr;
   tree( host )->mstiPortStatusIs( et1, alternate );
   EXPECT_THAT( calls.taken(), IsEmpty() );

   sm = make( nullptr );
   EXPECT_EQ( lib->baseSpanningTreeTopo( ethernet1 ), "" );
}

} // namespace
} // namespace TestSupport
