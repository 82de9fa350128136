#include "tests/support/Values.h"

#include <sstream>
#include <stdexcept>

namespace TestSupport {

std::string hex( Bytes const & bytes ) {
   static constexpr char const * digits = "0123456789abcdef";
   std::string text;
   for ( U8 const byte : bytes ) {
      text += text.empty() ? "" : " ";
      text += digits[byte >> 4];
      text += digits[byte & 15];
   }
   return text;
}

Bytes fromHex( std::string_view text ) {
   std::string digits( text );
   std::erase_if( digits, []( char c ) { return c == ' ' || c == '\n'; } );
   if ( digits.size() % 2 != 0 ) {
      throw std::invalid_argument( "half a byte in: " + std::string( text ) );
   }
   Bytes bytes;
   for ( std::size_t i = 0; i < digits.size(); i += 2 ) {
      bytes.push_back( static_cast< U8 >( std::stoul( digits.substr( i, 2 ), nullptr, 16 ) ) );
   }
   return bytes;
}

void put( Bytes & to, U64 number, unsigned size ) {
   while ( size-- > 0 ) {
      to.push_back( static_cast< U8 >( number >> ( 8 * size ) ) );
   }
}

void put( Bytes & to, Bytes const & bytes ) { to.insert( to.end(), bytes.begin(), bytes.end() ); }

U64 number( Bytes const & bytes, std::size_t at, unsigned size ) {
   U64 number = 0;
   for ( unsigned i = 0; i < size; ++i ) {
      number = number << 8 | ( at + i < bytes.size() ? bytes[at + i] : 0u );
   }
   return number;
}

U64 groupAddress( Protocol protocol ) {
   return protocol == Protocol::msrp ? 0x0180'c200'000e : 0x0180'c200'0021;
}
U16 etherType( Protocol protocol ) { return protocol == Protocol::msrp ? 0x22ea : 0x88f5; }

char const * name( Event event ) {
   static constexpr char const * names[] = { "New", "JoinIn", "In", "JoinMt", "Mt", "Lv" };
   return event <= Lv ? names[event] : "?";
}

char const * name( Declaration declaration ) {
   static constexpr char const * names[] = { "Ignore", "AskingFailed", "Ready", "ReadyFailed" };
   return declaration <= ReadyFailed ? names[declaration] : "?";
}

std::string WireKind::text( U64 key ) const {
   std::ostringstream out;
   out << ( hasStream() ? "0x" : "" ) << ( hasStream() ? std::hex : std::dec ) << key;
   return out.str();
}

WireKind const & wireKind( Protocol protocol, U8 type ) {
   static constexpr WireKind none{ "?", 0, {}, false };
   static constexpr WireKind vlan{ "vlan", 2, { 2 }, false };
   static constexpr WireKind msrp[] = { { "talker", 25, { 8, 6 }, false },
                                        { "failed", 34, { 8, 6 }, false },
                                        { "listener", 8, { 8 }, true },
                                        { "domain", 4, { 1, 1 }, false } };
   if ( protocol == Protocol::mvrp ) {
      return type == vlanType ? vlan : none;
   }
   return type >= talkerType && type <= domainType ? msrp[type - 1] : none;
}

Talker talker( U64 streamId ) {
   Talker value;
   value.streamId = streamId;
   value.dmac = 0x91e0'f000'0000 + ( streamId & 0xffff );
   return value;
}

namespace {

struct Field {
   U64 number;
   unsigned size;
};

Bytes record( std::initializer_list< Field > fields ) {
   Bytes bytes;
   for ( auto const & [number, size] : fields ) {
      put( bytes, number, size );
   }
   return bytes;
}

} // namespace

Bytes wire( Vlan const & value ) { return record( { { value.id, 2 } } ); }
Bytes wire( Talker const & value ) {
   return record( { { value.streamId, 8 },
                    { value.dmac, 6 },
                    { value.vlanId, 2 },
                    { value.maxFrameSize, 2 },
                    { value.maxIntervalFrames, 2 },
                    { value.priorityAndRank, 1 },
                    { value.accumulatedLatency, 4 } } );
}
Bytes wire( FailedTalker const & value ) {
   Bytes bytes = wire( value.talker );
   put( bytes, record( { { value.bridgeId, 8 }, { value.failureCode, 1 } } ) );
   return bytes;
}
Bytes wire( Listener const & value ) { return record( { { value.streamId, 8 } } ); }
Bytes wire( Domain const & value ) {
   return record( { { value.classId, 1 }, { value.priority, 1 }, { value.vid, 2 } } );
}

Bytes stored( Listener const & value ) {
   return record( { { value.streamId, 8 }, { value.declaration, 1 }, { 0, 3 } } );
}

Bytes storedValue( Protocol protocol, U8 type, U64 key, U32 variant ) {
   if ( protocol == Protocol::mvrp ) {
      return stored( Vlan{ static_cast< U16 >( key ) } );
   }
   Talker value = talker( key );
   value.accumulatedLatency += variant;
   switch ( type ) {
   case talkerType: return stored( value );
   case failedType: return stored( FailedTalker{ value } );
   case listenerType:
      return stored( Listener{ key, static_cast< Declaration >( 1 + variant % 3 ) } );
   default: return stored( Domain{ static_cast< U8 >( key ), static_cast< U8 >( key - 3 ) } );
   }
}

} // namespace TestSupport
