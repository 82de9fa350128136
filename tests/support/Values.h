// What an MRPDU speaks of, in the tests' own words: bytes, events, and a struct for each kind of
// attribute with its FirstValue as it stands on the wire.
//
// Nothing here shares code with the library's records, so that a test which compares the two
// compares two descriptions of the wire.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace TestSupport {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using Bytes = std::vector< U8 >;

// "01 80 c2", lower case, and back; blanks are free.
std::string hex( Bytes const & bytes );
Bytes fromHex( std::string_view text );

// Appends the low `size` bytes of the number, highest first.
void put( Bytes & to, U64 number, unsigned size );
void put( Bytes & to, Bytes const & bytes );
// The number in `size` bytes from `at` on; bytes behind the end count as 0.
U64 number( Bytes const & bytes, std::size_t at, unsigned size );

enum class Protocol : U8 { msrp, mvrp };

// Of each protocol, as IEEE 802.1Q assigns them.
U64 groupAddress( Protocol protocol );
U16 etherType( Protocol protocol );

// The digits of a ThreePackedEvents byte, and the fields of a FourPackedEvents byte.
enum Event : U8 { New, JoinIn, In, JoinMt, Mt, Lv };
enum Declaration : U8 { Ignore, AskingFailed, Ready, ReadyFailed };
char const * name( Event event );
char const * name( Declaration declaration );

// What the wire says of an attribute type.
struct WireKind {
   char const * name; // "talker"
   std::size_t size;  // of a FirstValue
   // Of the fields that step from one value of a vector to the next. They come first, and the first
   // of them is the key.
   unsigned stepping[2];
   bool declares; // has a declaration behind each event

   bool hasStream() const { return stepping[0] == 8; }
   // "0x100" of a stream, and a number of all others.
   std::string text( U64 key ) const;
};
// For a type that is none, a kind of no size.
WireKind const & wireKind( Protocol protocol, U8 type );

// AttributeTypes.
inline constexpr U8 vlanType = 1;
inline constexpr U8 talkerType = 1;
inline constexpr U8 failedType = 2;
inline constexpr U8 listenerType = 3;
inline constexpr U8 domainType = 4;

struct Vlan {
   static constexpr U8 type = vlanType;
   U16 id = 0;
};

struct Talker {
   static constexpr U8 type = talkerType;
   U64 streamId = 0;
   U64 dmac = 0;
   U16 vlanId = 2;
   U16 maxFrameSize = 1000;
   U16 maxIntervalFrames = 1;
   U8 priorityAndRank = 0x70;
   U32 accumulatedLatency = 50'000;
};
// With an address that steps with the stream id, so that neighbours go into one vector.
Talker talker( U64 streamId );

struct FailedTalker {
   static constexpr U8 type = failedType;
   Talker talker;
   U64 bridgeId = 0x8000'0200'0000'0001;
   U8 failureCode = 8;
};

// The declaration does not stand in the FirstValue, but in the events behind it.
struct Listener {
   static constexpr U8 type = listenerType;
   U64 streamId = 0;
   Declaration declaration = Ready;
};

struct Domain {
   static constexpr U8 type = domainType;
   U8 classId = 0;
   U8 priority = 0;
   U16 vid = 2;
};

Bytes wire( Vlan const & value );
Bytes wire( Talker const & value );
Bytes wire( FailedTalker const & value );
Bytes wire( Listener const & value );
Bytes wire( Domain const & value );

// What the database keeps of a value: the wire's bytes, and a listener's declaration behind them
// in four bytes, the least significant first.
template < class Value >
Bytes stored( Value const & value ) {
   return wire( value );
}
Bytes stored( Listener const & value );
// Some value of that type and key, as the database keeps it. Its variants differ in what an
// application may change; a VLAN or a domain has one.
Bytes storedValue( Protocol protocol, U8 type, U64 key, U32 variant = 0 );

} // namespace TestSupport
