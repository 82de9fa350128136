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
      isMsrp_ = type == etherType( Protocol::msrp );
      if ( !isMsrp_ && type != etherType( Protocol::mvrp ) ) {
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

   void say( std::string const & apart, std::string const & text ) {
      std::string & said = decoded_.said;
      said += ( said.empty() || said.back() == '{' ? "" : apart ) + text;
   }

   void readMessage() {
      U64 const type = take( 1 );
      U64 const length = take( 1 );
      Protocol const protocol = isMsrp_ ? Protocol::msrp : Protocol::mvrp;
      WireKind const & kind = wireKind( protocol, static_cast< U8 >( type ) );
      if ( !ok() || length != kind.size || kind.size == 0 ) {
         fault( "type ", type, " with AttributeLength ", length );
         return;
      }
      decoded_.typesAscend &= type >= std::exchange( lastType_, type );
      say( " ", std::string( kind.name ) + '{' );
      U64 const listLength = isMsrp_ ? take( 2 ) : 0;
      std::size_t const start = at_;
      do {
         readVector( kind );
      } while ( ok() && peek() != 0 );
      take( 2 );
      if ( ok() && isMsrp_ && at_ - start != listLength ) {
         fault( "AttributeListLength ", listLength, " of a list of ", at_ - start );
      }
      decoded_.said += '}';
   }

   void readVector( WireKind const & kind ) {
      U64 const header = take( 2 );
      Bytes const first = takeBytes( kind.size );
      U64 const n = header & 0x1fff;
      bool const isLeaveAll = ( header & 0x2000 ) != 0;
      std::string apart = "; ";
      if ( isLeaveAll ) {
         say( std::exchange( apart, " " ), "LeaveAll" );
      }
      if ( ( header & 0xc000 ) != 0 ) {
         fault( "bits 15 and 14 of a VectorHeader" );
      }
      if ( n == 0 && ( !isLeaveAll || first != Bytes( kind.size ) ) ) {
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
         say( std::exchange( apart, ", " ), kind.text( value.key ) + ' ' + name( value.event ) );
         if ( kind.declares ) {
            value.declaration =
               static_cast< Declaration >( four[i / 4] >> ( 6 - 2 * ( i % 4 ) ) & 3 );
            say( " ", name( value.declaration ) );
         }
         decoded_.declared.push_back( std::move( value ) );
      }
   }

   Bytes const & frame_;
   std::size_t at_ = 0;
   bool isMsrp_ = false;
   U64 lastType_ = 0;
   Decoded decoded_;
};

} // namespace

std::string Decoded::text() const {
   std::string all = said;
   for ( std::string const & fault : faults ) {
      all += ( all.empty() ? "!" : " !" ) + fault;
   }
   return all;
}

Decoded decode( Bytes const & frame ) { return Reader( frame ).read(); }

std::string says( Bytes const & frame ) { return decode( frame ).text(); }

} // namespace TestSupport
