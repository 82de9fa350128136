#include "tests/support/Mrpdu.h"

namespace TestSupport {

namespace {

// `perByte` digits of base `base` in each byte, the first in the highest place.
template < class Digit >
Bytes pack( std::vector< Digit > const & digits, unsigned perByte, unsigned base ) {
   Bytes bytes;
   for ( std::size_t i = 0; i < digits.size(); i += perByte ) {
      unsigned byte = 0;
      for ( std::size_t k = i; k < i + perByte; ++k ) {
         byte = byte * base + ( k < digits.size() ? unsigned{ digits[k] } : 0u );
      }
      bytes.push_back( static_cast< U8 >( byte ) );
   }
   return bytes;
}

} // namespace

Vector::Vector( U8 type, Bytes firstValue, std::vector< Event > const & events,
                std::vector< Declaration > const & declarations )
   : type_( type ), header_( static_cast< U16 >( events.size() ) ),
     firstValue_( std::move( firstValue ) ), eventBytes_( pack( events, 3, 6 ) ) {
   put( eventBytes_, pack( declarations, 4, 4 ) );
}

Bytes Vector::bytes() const {
   Bytes bytes;
   put( bytes, header_, 2 );
   put( bytes, firstValue_ );
   put( bytes, eventBytes_ );
   return bytes;
}

Vector vlans( U16 first, std::vector< Event > const & events ) {
   return Vector( vlanType, wire( Vlan{ first } ), events );
}
Vector talkers( Talker const & first, std::vector< Event > const & events ) {
   return Vector( talkerType, wire( first ), events );
}
Vector talkers( U64 firstStreamId, std::vector< Event > const & events ) {
   return talkers( talker( firstStreamId ), events );
}
Vector failedTalkers( FailedTalker const & first, std::vector< Event > const & events ) {
   return Vector( failedType, wire( first ), events );
}
Vector listeners( U64 firstStreamId, std::vector< ListenerEvent > const & events ) {
   std::vector< Event > three;
   std::vector< Declaration > four;
   for ( auto const & [event, declaration] : events ) {
      three.push_back( event );
      four.push_back( declaration );
   }
   return Vector( listenerType, wire( Listener{ firstStreamId } ), three, four );
}
Vector domains( Domain const & first, std::vector< Event > const & events ) {
   return Vector( domainType, wire( first ), events );
}

Vector vlanLeaveAll() { return vlans( 0, {} ).leaveAll(); }
Vector msrpLeaveAll( U8 type ) {
   return Vector( type, Bytes( wireKind( Protocol::msrp, type ).size ), {} ).leaveAll();
}

Message::Message( std::vector< Vector > const & vectors )
   : type_( vectors.at( 0 ).type() ),
     attributeLength_( static_cast< U8 >( vectors.at( 0 ).attributeLength() ) ) {
   for ( Vector const & vector : vectors ) {
      put( list_, vector.bytes() );
   }
}

Bytes Message::bytes( Protocol protocol ) const {
   Bytes bytes{ type_, attributeLength_ };
   if ( protocol == Protocol::msrp ) {
      auto const length = static_cast< int >( list_.size() ) + 2 + listLengthOff_;
      put( bytes, listLength_.value_or( static_cast< U16 >( length ) ), 2 );
   }
   put( bytes, list_ );
   if ( endMark_ ) {
      put( bytes, 0, 2 );
   }
   return bytes;
}

Frame::Frame( Protocol protocol, std::vector< Message > messages )
   : protocol_( protocol ), messages_( std::move( messages ) ), to_( groupAddress( protocol ) ),
     type_( etherType( protocol ) ) {}

Bytes Frame::bytes() const {
   Bytes bytes;
   put( bytes, to_, 6 );
   put( bytes, from_, 6 );
   put( bytes, tags_ );
   put( bytes, type_, 2 );
   put( bytes, version_, 1 );
   for ( Message const & message : messages_ ) {
      put( bytes, message.bytes( protocol_ ) );
   }
   if ( endMark_ ) {
      put( bytes, 0, 2 );
   }
   put( bytes, tail_ );
   bytes.resize( bytes.size() - std::min( cut_, bytes.size() ) );
   return bytes;
}

} // namespace TestSupport
