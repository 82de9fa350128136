// What the values of a vector are: the steps from its FirstValue, the events, a listener's
// declarations, and the bytes that the database keeps.
#include "tests/support/Participant.h"

#include <gmock/gmock.h>

namespace TestSupport {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string const et1 = "Ethernet1";

// The values, as the application finds them in its join indications.
std::vector< std::string > joinedValues( Mrp::MrpApplication application, Vector const & vector ) {
   Participant participant( application );
   participant.receive( et1, Frame( participant.protocol(), { vector } ) );
   std::vector< std::string > values;
   for ( Indication const & indication : participant.lib().indications ) {
      values.push_back( hex( indication.value ) );
      // What the application was shown is what the database keeps.
      auto const kept = participant.attribute( et1, indication.type, indication.key );
      EXPECT_EQ( hex( kept ? kept->value : Bytes() ), values.back() );
   }
   return values;
}

// The same, by the decoder that shares no code with the library.
std::vector< std::string > valuesToJoin( Protocol protocol, Vector const & vector ) {
   Decoded const frame = decode( Frame( protocol, { vector } ) );
   EXPECT_THAT( frame.faults, IsEmpty() );
   std::vector< std::string > values;
   for ( Declared const & declared : frame.declared ) {
      if ( declared.event == New || declared.event == JoinIn || declared.event == JoinMt ) {
         bool const declares = vector.type() == listenerType && protocol == Protocol::msrp;
         values.push_back( hex( declares ? stored( Listener{ declared.key, declared.declaration } )
                                         : declared.value ) );
      }
   }
   return values;
}

// Numbers of values that put events and declarations at each place of a byte, and FirstValues that
// wrap around on the way. The other fields, which do not step, are all ones.
TEST( VectorValues, stepFromTheFirst ) {
   Talker const edge{ ~0ull - 4, 0xffff'ffff'fffa, 0xffff, 0xfffe, 0xfffd, 0xf0, ~0u };
   static constexpr Event events[] = { JoinIn, New, Lv, JoinMt, Mt, JoinIn, In };
   static constexpr Declaration declarations[] = { Ready, AskingFailed, Ignore, ReadyFailed,
                                                   Ready };
   std::vector< Event > said;
   std::vector< ListenerEvent > declared;
   for ( std::size_t n = 0; n < 26; ++n ) {
      said.push_back( events[n % 7] );
      declared.push_back( { said.back(), declarations[n % 5] } );
      for ( Vector const & vector :
            { talkers( edge, said ), failedTalkers( { edge, ~0ull, 0xff }, said ),
              listeners( edge.streamId, declared ), domains( { 254, 250, 0xffff }, said ) } ) {
         SCOPED_TRACE( testing::Message() << n + 1 << " of type " << unsigned{ vector.type() } );
         EXPECT_EQ( joinedValues( Mrp::MSRP, vector ), valuesToJoin( Protocol::msrp, vector ) );
      }
      Vector const vector = vlans( 65530, said );
      EXPECT_EQ( joinedValues( Mrp::MVRP, vector ), valuesToJoin( Protocol::mvrp, vector ) );
   }
}

TEST( VectorValues, loseTheUndefinedBitsBesideTheRank ) {
   Talker const expected{ .streamId = 1, .priorityAndRank = 0x60 };
   Talker received = expected;
   received.priorityAndRank |= 0x0f;
   EXPECT_THAT( joinedValues( Mrp::MSRP, talkers( received, { New } ) ),
                ElementsAre( hex( wire( expected ) ) ) );
   EXPECT_THAT( joinedValues( Mrp::MSRP, failedTalkers( { received }, { New } ) ),
                ElementsAre( hex( wire( FailedTalker{ expected } ) ) ) );
}

TEST( VectorEvents, thatAreNoneOfTheSixLeaveTheOthersAlone ) {
   auto const joined = []( Vector const & vector ) { return joinedValues( Mrp::MVRP, vector ); };
   Vector const three = vlans( 10, { New, New, New } );
   // 0xff is 7, 0 and 3: the first is no event, and yet the other two are.
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 0xff } ) ), ElementsAre( "00 0b", "00 0c" ) );
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 216 } ) ), ElementsAre( "00 0b", "00 0c" ) );
   EXPECT_THAT( joined( Vector( three ).eventBytes( { 215 } ) ), IsEmpty() );
}

} // namespace
} // namespace TestSupport
