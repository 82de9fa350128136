#include "tests/support/Decode.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace TestSupport {

namespace {

// The value i steps behind the FirstValue.
Bytes stepped( WireKind const & kind, Bytes const & first, U64 i ) {
   Bytes value;
   for ( unsigned const size : kind.stepping ) {
      put( value, number( first, value.size(), size ) + i, size );
   }
   value.insert( value.end(), first.begin() + static_cast< std::ptrdiff_t >( value.size() ),
                 first.end() );
   return value;
}

class Reader {
 public:
   explicit Reader( Bytes const & frame ) : frame_( frame ) {}

   Decoded read() {
      take( 6 );
      decoded_.from = take( 6 );
      U64 const type = take( 2 );
      bool const isMsrp = type == etherType( Protocol::msrp );
      decoded_.protocol = isMsrp ? Protocol::msrp : Protocol::mvrp;
      if ( type != etherType( decoded_.protocol ) ) {
         fault( "type ", std::hex, type );
         return decoded_;
      }
      take( 1 );
      do {
         readMessage();
      } while ( ok() && left() > 0 && peek() != 0 );
      if ( ok() && take( 2 ) == 0 && left() > 0 ) {
         fault( left(), " bytes behind the EndMark" );
      }
      return decoded_;
   }

 private:
   std::size_t left() const { return frame_.size() - at_; }
   bool ok() const { return decoded_.faults.empty(); }
   U64 peek() const { return number( frame_, at_, 2 ); }

   template < class... Word >
   void fault( Word const &... word ) {
      std::ostringstream out;
      ( out << ... << word );
      decoded_.faults.push_back( out.str() );
   }

   U64 take( unsigned size ) {
      if ( left() < size ) {
         fault( "the frame ends at byte ", frame_.size(), ", ", size, " bytes wanted at ", at_ );
         at_ = frame_.size();
         return 0;
      }
      at_ += size;
      return number( frame_, at_ - size, size );
   }

   Bytes takeBytes( std::size_t size ) {
      Bytes bytes( size );
      std::ranges::generate( bytes, [&] { return static_cast< U8 >( ok() ? take( 1 ) : 0 ); } );
      return bytes;
   }

   void readMessage() {
      DecodedMessage message;
      message.type = static_cast< U8 >( take( 1 ) );
      U64 const length = take( 1 );
      WireKind const & kind = wireKind( decoded_.protocol, message.type );
      if ( !ok() || length != kind.size || kind.size == 0 ) {
         fault( "type ", unsigned{ message.type }, " with AttributeLength ", length );
         return;
      }
      bool const isMsrp = decoded_.protocol == Protocol::msrp;
      U64 const listLength = isMsrp ? take( 2 ) : 0;
      std::size_t const start = at_;
      do {
         message.vectors.push_back( readVector( kind ) );
      } while ( ok() && peek() != 0 );
      take( 2 );
      if ( ok() && isMsrp && at_ - start != listLength ) {
         fault( "AttributeListLength ", listLength, " of a list of ", at_ - start );
      }
      decoded_.messages.push_back( std::move( message ) );
   }

   DecodedVector readVector( WireKind const & kind ) {
      DecodedVector vector;
      U64 const header = take( 2 );
      Bytes const first = takeBytes( kind.size );
      U64 const n = header & 0x1fff;
      vector.leaveAll = ( header & 0x2000 ) != 0;
      if ( ( header & 0xc000 ) != 0 ) {
         fault( "bits 15 and 14 of a VectorHeader" );
      }
      if ( n == 0 &&
           ( !vector.leaveAll || std::ranges::any_of( first, []( U8 b ) { return b != 0; } ) ) ) {
         fault( "a vector of no values that is no LeaveAll with a FirstValue of zeros" );
      }
      Bytes const three = takeBytes( ( n + 2 ) / 3 );
      Bytes const four = takeBytes( kind.declares ? ( n + 3 ) / 4 : 0 );
      for ( U64 i = 0; i < n && ok(); ++i ) {
         static constexpr unsigned places[] = { 36, 6, 1 };
         if ( three[i / 3] > 215 ) {
            fault( "ThreePackedEvents byte ", unsigned{ three[i / 3] } );
         }
         Declared value;
         value.value = stepped( kind, first, i );
         value.key = number( value.value, 0, kind.stepping[0] );
         value.event = static_cast< Event >( three[i / 3] / places[i % 3] % 6 );
         if ( kind.declares ) {
            value.declaration =
               static_cast< Declaration >( four[i / 4] >> ( 6 - 2 * ( i % 4 ) ) & 3 );
         }
         vector.values.push_back( std::move( value ) );
      }
      return vector;
   }

   Bytes const & frame_;
   std::size_t at_ = 0;
   Decoded decoded_;
};

} // namespace

std::vector< Declared > Decoded::values() const {
   std::vector< Declared > all;
   for ( DecodedMessage const & message : messages ) {
      for ( DecodedVector const & vector : message.vectors ) {
         all.insert( all.end(), vector.values.begin(), vector.values.end() );
      }
   }
   return all;
}

std::string Decoded::text() const {
   std::string all;
   auto const add = [&]( std::string const & apart, std::string const & text ) {
      all += ( all.empty() || all.back() == '{' ? "" : apart ) + text;
   };
   for ( DecodedMessage const & message : messages ) {
      WireKind const & kind = wireKind( protocol, message.type );
      add( " ", std::string( kind.name ) + '{' );
      for ( DecodedVector const & vector : message.vectors ) {
         std::string apart = "; ";
         if ( vector.leaveAll ) {
            add( std::exchange( apart, " " ), "LeaveAll" );
         }
         for ( Declared const & value : vector.values ) {
            add( std::exchange( apart, ", " ), kind.text( value.key ) + ' ' + name( value.event ) );
            all += kind.declares ? std::string( " " ) + name( value.declaration ) : "";
         }
      }
      all += '}';
   }
   for ( std::string const & fault : faults ) {
      add( " ", '!' + fault );
   }
   return all;
}

Decoded decode( Bytes const & frame ) { return Reader( frame ).read(); }

std::string says( Bytes const & frame ) { return decode( frame ).text(); }

} // namespace TestSupport
