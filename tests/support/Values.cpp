#include "tests/support/Values.h"

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
   std::string digits;
   for ( char const c : text ) {
      if ( c != ' ' && c != '\n' ) {
         digits += c;
      }
   }
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

Talker talker( U64 streamId ) {
   Talker value;
   value.streamId = streamId;
   value.dmac = 0x91e0'f000'0000 + ( streamId & 0xffff );
   return value;
}

Bytes wire( Vlan const & value ) {
   Bytes bytes;
   put( bytes, value.id, 2 );
   return bytes;
}

Bytes wire( Talker const & value ) {
   Bytes bytes;
   put( bytes, value.streamId, 8 );
   put( bytes, value.dmac, 6 );
   put( bytes, value.vlanId, 2 );
   put( bytes, value.maxFrameSize, 2 );
   put( bytes, value.maxIntervalFrames, 2 );
   put( bytes, value.priorityAndRank, 1 );
   put( bytes, value.accumulatedLatency, 4 );
   return bytes;
}

Bytes wire( FailedTalker const & value ) {
   Bytes bytes = wire( value.talker );
   put( bytes, value.bridgeId, 8 );
   put( bytes, value.failureCode, 1 );
   return bytes;
}

Bytes wire( Listener const & value ) {
   Bytes bytes;
   put( bytes, value.streamId, 8 );
   return bytes;
}

Bytes wire( Domain const & value ) {
   Bytes bytes;
   put( bytes, value.classId, 1 );
   put( bytes, value.priority, 1 );
   put( bytes, value.vid, 2 );
   return bytes;
}

Bytes stored( Listener const & value ) {
   Bytes bytes = wire( value );
   put( bytes, fromHex( "00 00 00 00" ) );
   bytes[8] = value.declaration;
   return bytes;
}

} // namespace TestSupport
