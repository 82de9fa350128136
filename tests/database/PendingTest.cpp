// Attributes on their way into and out of the tree: what is seen of them meanwhile, and how fast
// they go.
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/platform/korv/RangeException.h"

#include "tests/support/Participant.h"

#include <gmock/gmock.h>

#include <array>
#include <sys/socket.h>
#include <unistd.h>

namespace TestSupport {
namespace {

std::string const et1 = "Ethernet1";
Pelk::IntfId const ethernet1( et1 );

Bytes join( U16 vlan ) { return mvrpFrame( vlans( vlan, { JoinIn } ) ); }

// "seen tree index" as far as they hold: by the machines, by a watcher, by a walk.
std::string where( Participant & mvrp, U16 vlan ) {
   std::string all = mvrp.attribute( et1, vlan ) ? "seen" : "";
   auto const * const intf = mvrp.status().application( Mrp::MVRP )->attrDatabase( ethernet1 );
   auto const * const type = intf ? intf->intfTypeApplicant( vlanType ) : nullptr;
   if ( type && type->mrpAttribute( vlan ) ) {
      all += " tree";
   }
   auto const * const iter = mvrp.sm().mrpAttrIter( { ethernet1, vlanType } );
   if ( iter && iter->attributeKey( vlan ) ) {
      all += " index";
   }
   return all;
}

void del( Participant & mvrp, U16 vlan ) {
   mvrp.sm().addAttrToDeletePending( Mrp::MrpAttribute( ethernet1, vlanType, vlan ) );
}

TEST( Pending, entersAndLeavesTheTreeATenthOfASecondLater ) {
   Participant mvrp( Mrp::MVRP );
   mvrp.receive( et1, join( 10 ) );
   EXPECT_FALSE( mvrp.sm().mrpGetAttrFromDatabase( ethernet1, vlanType, 10, false ) );
   mvrp.advanceTo( 0.09 );
   EXPECT_EQ( where( mvrp, 10 ), "seen index" );
   mvrp.advanceTo( 0.11 );
   EXPECT_EQ( where( mvrp, 10 ), "seen tree index" );
   EXPECT_EQ( hex( mvrp.attribute( et1, 10 )->value ), "00 0a" );
   del( mvrp, 10 );
   EXPECT_FALSE( mvrp.sm().mrpGetAttrFromDatabase( ethernet1, vlanType, 10, false ) );
   mvrp.advanceTo( 0.2 );
   EXPECT_EQ( where( mvrp, 10 ), " tree index" );
   mvrp.advanceTo( 0.22 );
   EXPECT_EQ( where( mvrp, 10 ), "" );
}

// Each attribute arrives when the one before has been committed.
TEST( Pending, commitsFourTimesQuicklyAndThenOnceASecond ) {
   Participant mvrp( Mrp::MVRP );
   std::vector< double > times;
   U16 vlan = 10;
   mvrp.receive( et1, join( vlan ) );
   for ( int hundredths = 1; hundredths <= 450; ++hundredths ) {
      mvrp.advanceTo( hundredths / 100.0 );
      if ( mvrp.attribute( et1, vlan )->committed ) {
         times.push_back( Korv::now() );
         mvrp.receive( et1, join( ++vlan ) );
      }
   }
   double const expected[] = { 0.1, 0.2, 0.3, 0.4, 1.1, 2.1, 3.1, 4.1 };
   ASSERT_EQ( times.size(), std::size( expected ) );
   for ( std::size_t i = 0; i < times.size(); ++i ) {
      EXPECT_NEAR( times[i], expected[i], 0.06 );
   }
}

// A + is a join, a - a deletion, a | a review. The tree's entry stays the same object if it
// outlives them.
TEST( Pending, settlesWhatComesAndGoesBeforeAReview ) {
   struct Row {
      std::string steps;
      char const * at;    // once done
      char const * later; // and reviewed
      char const * states;
   };
   for ( Row const & row :
         { Row{ "+-", "", "", "none" },
           { "+-+", "seen index", "seen tree index", "mrpAnxiousObserver mrpIn" },
           { "+|-", " tree index", "", "none" },
           { "+|--", " tree index", "", "none" },
           // A fresh copy, which has forgotten what stood in the tree.
           { "+|-+", "seen tree index", "seen tree index", "mrpAnxiousObserver mrpIn" },
           // Its copy takes the place in the index along.
           { "+|-+-", " tree", "", "none" },
           { "+|+", "seen tree index", "seen tree index", "mrpQuietObserver mrpIn" } } ) {
      SCOPED_TRACE( row.steps );
      Participant mvrp( Mrp::MVRP );
      auto const committed = [&] {
         return mvrp.sm().mrpGetAttrFromDatabase( ethernet1, vlanType, 10, false );
      };
      Mrp::MrpAttrDatabase const * before = nullptr;
      for ( char const step : row.steps ) {
         switch ( step ) {
         case '+': mvrp.receive( et1, join( 10 ) ); break;
         case '-': del( mvrp, 10 ); break;
         default: mvrp.advanceBy( 0.3 ); before = committed();
         }
      }
      EXPECT_EQ( where( mvrp, 10 ), row.at );
      mvrp.advanceBy( 0.3 );
      EXPECT_EQ( where( mvrp, 10 ), row.later );
      EXPECT_EQ( mvrp.states( et1, 10 ), row.states );
      EXPECT_TRUE( !before || !committed() || committed() == before );
      EXPECT_TRUE( mvrp.sm().addPendingAttr().empty() );
      EXPECT_TRUE( mvrp.sm().deletePendingAttr().empty() );
   }
}

// The stream that the mirror writes to, over a real socket.
struct Stream : Korv::NboAttrLog::SocketOutSm {
   Stream() { EXPECT_EQ( socketpair( AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data() ), 0 ); }
   ~Stream() override {
      close( ends[0] );
      close( ends[1] );
   }
   Korv::S32 sockFd() const override { return ends[0]; }
   std::array< int, 2 > ends{};
};

// However long that takes, and then it is not the pace of reviews that counts.
TEST( Pending, waitsForACloggedStreamAndGoesOnWithinATenthOfASecond ) {
   Korv::Ptr< Stream > const stream( new Stream );
   Korv::NboAttrLog::top().socketOutSmIs( "host", stream );
   Participant mvrp( Mrp::MVRP );
   Korv::NboAttrLog::top().socketOutSmDel( "host" );
   std::array< char, 4096 > block{};
   while ( write( stream->ends[0], block.data(), block.size() ) > 0 ) {
   }
   mvrp.receive( et1, join( 10 ) );
   mvrp.advanceTo( 8.5 );
   EXPECT_EQ( where( mvrp, 10 ), "seen index" );
   while ( read( stream->ends[1], block.data(), block.size() ) > 0 ) {
   }
   mvrp.advanceTo( 8.61 );
   EXPECT_EQ( where( mvrp, 10 ), "seen tree index" );
}

// Takes the interface out of the tree on hearing of a level below.
struct Ender : Mrp::MrpIntfApplicant::Reactor, Mrp::MrpIntfTypeApplicant::Reactor {
   explicit Ender( Mrp::MrpApplicationDatabase * d ) : database( d ) {}
   void onIntfTypeApplicant( U8 ) override { database->attrDatabaseDel( ethernet1 ); }
   void onMrpAttribute( U64 ) override { database->attrDatabaseDel( ethernet1 ); }
   Mrp::MrpApplicationDatabase * database;
};

TEST( Tree, mayLoseALevelWhileThatIsAnnounced ) {
   for ( bool const ofTheType : { true, false } ) {
      Participant mvrp( Mrp::MVRP );
      Ender ender( mvrp.status().application( Mrp::MVRP ) );
      auto * const intf = ender.database->attrDatabaseIs( ethernet1 );
      if ( ofTheType ) {
         ender.Mrp::MrpIntfApplicant::Reactor::notifierIs( intf );
      } else {
         ender.Mrp::MrpIntfTypeApplicant::Reactor::notifierIs(
            intf->intfTypeApplicantIs( vlanType ) );
      }
      mvrp.receive( et1, join( 10 ) );
      mvrp.advanceTo( 1 );
      EXPECT_TRUE( mvrp.sm().addPendingAttr().empty() );
      EXPECT_EQ( mvrp.states( et1, 10 ), "none" );
   }
}

// A byte that is there already is no write: below the count a slot outside of the span reads as 0.
TEST( Tree, takesAZeroForASlotOutsideOfTheSpanAsThere ) {
   auto const attribute = Mrp::MrpAttrDatabaseIs( 1 );
   attribute->attributeValueIs( 3, 3 );
   EXPECT_THROW( attribute->attributeValueIs( 5, 5 ), Korv::RangeException );
   attribute->attributeValueIs( 4, 4 );
   attribute->attributeValueIs( 2, 2 );
   attribute->attributeValueIs( 0, 0 );
   EXPECT_EQ( attribute->attributeValue().head(), 2u );
   EXPECT_EQ( attribute->attributeValue().count(), 3u );
   EXPECT_THROW( attribute->attributeValueIs( 65, 0 ), Korv::RangeException );
   EXPECT_THROW( attribute->attributeValueMetadataIs( { 0, 66 } ), Korv::RangeException );
}

} // namespace
} // namespace TestSupport
