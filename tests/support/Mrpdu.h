// Frames written as what they say:
//
//    mvrpFrame( vlans( 10, { JoinIn, JoinIn } ).leaveAll() )
//    msrpFrame( domains( { 6, 3, 2 }, { JoinIn } ),
//               message( talkers( 0x100, { New } ), talkers( 0x200, { JoinMt } ) ) )
//
// Each argument of a frame is a message; a vector alone is a message of its own. Lengths, EndMarks
// and headers are right unless something says otherwise, and everything can be said otherwise:
//
//    msrpFrame( message( talkers( 0x100, { New } ) ).listLength( 40 ).noEndMark() ).version( 1 )
#pragma once

#include "tests/support/Values.h"

#include <optional>
#include <utility>

namespace TestSupport {

// One VectorAttribute.
class Vector {
 public:
   Vector( U8 type, Bytes firstValue, std::vector< Event > const & events,
           std::vector< Declaration > const & declarations = {} );

   Vector & leaveAll() { return header( header_ | 0x2000u ); }
   // The VectorHeader, with its flags and its NumberOfValues.
   Vector & header( unsigned header ) { return header_ = static_cast< U16 >( header ), *this; }
   // The event bytes as they stand, a listener's four-packed ones included.
   Vector & eventBytes( Bytes bytes ) { return eventBytes_ = std::move( bytes ), *this; }

   U8 type() const { return type_; }
   std::size_t attributeLength() const { return firstValue_.size(); }
   Bytes bytes() const;

 private:
   U8 type_;
   U16 header_;
   Bytes firstValue_;
   Bytes eventBytes_;
};

struct ListenerEvent {
   Event event;
   Declaration declaration;
};

Vector vlans( U16 first, std::vector< Event > const & events );
Vector talkers( Talker const & first, std::vector< Event > const & events );
Vector talkers( U64 firstStreamId, std::vector< Event > const & events );
Vector failedTalkers( FailedTalker const & first, std::vector< Event > const & events );
Vector listeners( U64 firstStreamId, std::vector< ListenerEvent > const & events );
Vector domains( Domain const & first, std::vector< Event > const & events );

// A LeaveAll that travels alone: no values, no events, a FirstValue of zeros.
Vector vlanLeaveAll();
Vector msrpLeaveAll( U8 type );

class Message {
 public:
   Message( Vector const & vector ) : Message( std::vector< Vector >{ vector } ) {} // NOLINT
   // Type and AttributeLength of the first vector; there is one.
   explicit Message( std::vector< Vector > const & vectors );
   // Any header in front of any list.
   Message( U8 type, U8 attributeLength, Bytes list )
      : type_( type ), attributeLength_( attributeLength ), list_( std::move( list ) ) {}

   Message & type( U8 type ) { return type_ = type, *this; }
   Message & attributeLength( unsigned length ) {
      return attributeLength_ = static_cast< U8 >( length ), *this;
   }
   // In place of the right one, which counts the EndMark. MSRP only.
   Message & listLength( unsigned length ) {
      return listLength_ = static_cast< U16 >( length ), *this;
   }
   Message & listLengthOff( int by ) { // by that many bytes
      listLengthOff_ = by;
      return *this;
   }
   Message & noEndMark() { return endMark_ = false, *this; }

   Bytes bytes( Protocol protocol ) const;

 private:
   U8 type_;
   U8 attributeLength_;
   Bytes list_;
   std::optional< U16 > listLength_;
   int listLengthOff_ = 0;
   bool endMark_ = true;
};

// Several vectors in one message.
template < class... More >
Message message( Vector const & first, More const &... more ) {
   return Message( std::vector< Vector >{ first, more... } );
}

class Frame {
 public:
   Frame( Protocol protocol, std::vector< Message > messages );

   Frame & to( U64 address ) { return to_ = address, *this; }
   Frame & from( U64 address ) { return from_ = address, *this; }
   Frame & type( U16 etherType ) { return type_ = etherType, *this; }
   // One more 802.1Q tag, inside of those there are.
   Frame & tag( U16 vlanId ) { return put( tags_, 0x8100'0000u | vlanId, 4 ), *this; }
   Frame & version( U8 version ) { return version_ = version, *this; }
   Frame & noEndMark() { return endMark_ = false, *this; }
   // Behind all that is there, a minimum frame's padding for one.
   Frame & append( Bytes bytes ) { return put( tail_, bytes ), *this; }
   // Takes bytes off the end.
   Frame & cut( std::size_t bytes ) { return cut_ = bytes, *this; }

   Bytes bytes() const;
   operator Bytes() const { return bytes(); } // NOLINT(google-explicit-constructor)

 private:
   Protocol protocol_;
   std::vector< Message > messages_;
   U64 to_;
   U64 from_ = 0x0200'0000'0099;
   U16 type_;
   Bytes tags_;
   U8 version_ = 0;
   bool endMark_ = true;
   Bytes tail_;
   std::size_t cut_ = 0;
};

template < class... M >
Frame mvrpFrame( M const &... messages ) {
   return Frame( Protocol::mvrp, { Message( messages )... } );
}
template < class... M >
Frame msrpFrame( M const &... messages ) {
   return Frame( Protocol::msrp, { Message( messages )... } );
}

} // namespace TestSupport
