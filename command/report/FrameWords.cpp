#include "command/report/FrameWords.h"

#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/vocabulary/VectorFormat.h"

#include "command/report/Words.h"

#include <cstring>
#include <stdexcept>

namespace Command {

namespace {

using Korv::U16;
using Korv::U32;

constexpr std::size_t addressBytes = 12;
constexpr U16 vlanTagType = 0x8100;
constexpr U16 vlanIdMask = 0x0FFF;

// Why the rest of a frame cannot be read.
class Unreadable : public std::runtime_error {
   using runtime_error::runtime_error;
};

class Reader {
 public:
   explicit Reader( std::span< U8 const > bytes ) : bytes_( bytes ) {}

   std::size_t position() const { return at_; }
   bool atEnd() const { return at_ == bytes_.size(); }

   std::span< U8 const > take( std::size_t n, char const * what ) {
      if ( bytes_.size() - at_ < n ) {
         throw Unreadable( "the frame ends within " + std::string( what ) );
      }
      auto const taken = bytes_.subspan( at_, n );
      at_ += n;
      return taken;
   }
   U8 takeU8( char const * what ) { return take( 1, what )[0]; }
   U16 takeU16( char const * what ) { return Korv::networkU16At( take( 2, what ).data() ); }

   // Takes an EndMark if there is one.
   bool takeEndMark() {
      bool const isThere =
         bytes_.size() - at_ >= 2 && Korv::networkU16At( &bytes_[at_] ) == Mrp::endOfMark;
      at_ += isThere ? 2 : 0;
      return isThere;
   }

 private:
   std::span< U8 const > bytes_;
   std::size_t at_ = 0;
};

class FrameInWords {
 public:
   FrameInWords( Mrp::MrpApplication application, std::span< U8 const > frame )
      : application_( application ), reader_( frame ) {}

   std::string words() {
      try {
         readFrame();
      } catch ( Unreadable const & why ) {
         separate( "; " );
         words_ += "not readable from byte " + std::to_string( readable_ ) + " on: " + why.what();
      }
      return words_;
   }

 private:
   void separate( char const * separator ) { words_ += words_.empty() ? "" : separator; }

   void readFrame() {
      reader_.take( addressBytes, "its addresses" );
      if ( reader_.takeU16( "its type" ) == vlanTagType ) {
         words_ +=
            "tagged with VLAN " + std::to_string( reader_.takeU16( "its tag" ) & vlanIdMask );
         reader_.takeU16( "its type" );
      }
      version_ = reader_.takeU8( "its version" );
      if ( version_ != 0 ) {
         separate( "; " );
         words_ += "version " + std::to_string( version_ );
      }
      bool isAny = false;
      // The last EndMark may be missing; what stands behind it is padding.
      for ( ; !reader_.atEnd() && !reader_.takeEndMark(); isAny = true ) {
         readable_ = reader_.position();
         readMessage();
      }
      if ( !isAny ) {
         separate( "; " );
         words_ += "no message";
      }
   }

   void readMessage() {
      U8 const type = reader_.takeU8( "a message's type" );
      U8 const length = reader_.takeU8( "a message's AttributeLength" );
      bool const hasListLength = application_ == Mrp::MSRP;
      std::size_t const listLength =
         hasListLength ? reader_.takeU16( "an AttributeListLength" ) : 0;
      std::string const name = typeWord( application_, type );
      if ( length == 0 || length != Mrp::mrpSizeOfAttribute( type, application_ ) ) {
         std::string const what = name + " with an AttributeLength of " + std::to_string( length );
         if ( version_ == 0 || !hasListLength ) {
            throw Unreadable( what );
         }
         reader_.take( listLength, "a message" );
         separate( "; " );
         words_ += what + ", skipped";
         return;
      }
      separate( "; " );
      words_ += name;
      separator_ = " ";
      std::size_t const listStart = reader_.position();
      do {
         readable_ = reader_.position();
         readVector( type, length );
      } while ( !reader_.takeEndMark() );
      std::size_t const listBytes = reader_.position() - listStart;
      if ( hasListLength && listBytes != listLength ) {
         readable_ = reader_.position();
         throw Unreadable( "the AttributeListLength is " + std::to_string( listLength ) +
                           " for a list of " + std::to_string( listBytes ) + " bytes" );
      }
   }

   void readVector( U8 type, U8 length ) {
      U16 const header = reader_.takeU16( "a list: its EndMark is missing" );
      U16 const values = header & Mrp::numberOfValuesMask;
      bool const isLeaveAll = ( header & Mrp::leaveAllBit ) != 0;
      if ( values == 0 && !isLeaveAll ) {
         throw Unreadable( "a vector of no values" );
      }
      auto const firstValue = reader_.take( length, "a FirstValue" );
      bool const isListener = application_ == Mrp::MSRP && type == Mrp::listenerVector;
      auto const three = reader_.take( Mrp::packedBytes( values, Mrp::eventsPerThreePackedByte ),
                                       "the events of a vector" );
      auto const four =
         reader_.take( isListener ? Mrp::packedBytes( values, Mrp::eventsPerFourPackedByte ) : 0,
                       "the declaration types of a vector" );
      if ( isLeaveAll ) {
         say( "LeaveAll" );
      }
      sayValues( type, valueOfFirstValue( application_, type, firstValue ), values, three, four );
   }

   // Values that follow on each other, with the same event and the same declaration, are said as a
   // range.
   void sayValues( U8 type, Bytes value, U16 values, std::span< U8 const > three,
                   std::span< U8 const > four ) {
      Bytes first;
      Bytes last;
      U8 event = 0;
      auto const sayRun = [&] {
         if ( !first.empty() ) {
            say( sentence( rangeFields( application_, type, first, last ), eventWord( event ) ) );
         }
      };
      for ( std::size_t i = 0; i < values; ++i ) {
         if ( i > 0 ) {
            value = nextValue( application_, type, value );
         }
         if ( !four.empty() ) {
            declare( value, static_cast< U8 >( four[i / 4] >> ( 6 - 2 * ( i % 4 ) ) & 3 ) );
         }
         constexpr U8 divisors[] = { 36, 6, 1 };
         U8 const packed = static_cast< U8 >( three[i / 3] / divisors[i % 3] );
         U8 const nextEvent = i % 3 == 0 ? packed : packed % 6;
         if ( first.empty() || nextEvent != event ||
              nextValue( application_, type, last ) != value ) {
            sayRun();
            first = value;
            event = nextEvent;
         }
         last = value;
      }
      sayRun();
   }

   static void declare( Bytes & value, U8 declaration ) {
      Mrp::MsrpListenerAttribute listener;
      std::memcpy( &listener, value.data(), sizeof listener );
      listener.listenerEventIs( static_cast< Mrp::MsrpListenerEvent >( declaration ) );
      std::memcpy( value.data(), &listener, sizeof listener );
   }

   void say( std::string const & text ) {
      words_ += separator_ + text;
      separator_ = ", ";
   }

   Mrp::MrpApplication application_;
   Reader reader_;
   std::string words_;
   std::string separator_;    // before what is said next of a message
   std::size_t readable_ = 0; // everything before this byte has been read
   U8 version_ = 0;
};

} // namespace

std::string frameWords( Mrp::MrpApplication application, std::span< U8 const > frame ) {
   return FrameInWords( application, frame ).words();
}

} // namespace Command
