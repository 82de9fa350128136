// A 6-byte Ethernet address, byte for byte as in a frame, with alignment 1: it stands in wire
// records as it is. The text form is aa:bb:cc:dd:ee:ff, in lower case.
#pragma once

#include "mrp/platform/korv/Text.h"
#include "mrp/platform/korv/Types.h"

#include <compare>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace Pelk {

class EthAddr {
 public:
   static constexpr std::size_t size = 6;

   constexpr EthAddr() = default;
   // In the order of transmission.
   constexpr EthAddr( Korv::U8 b0, Korv::U8 b1, Korv::U8 b2, Korv::U8 b3, Korv::U8 b4, Korv::U8 b5 )
      : bytes_{ b0, b1, b2, b3, b4, b5 } {}
   explicit EthAddr( std::span< Korv::U8 const, size > bytes );
   // From exactly the text form, upper case hexadecimal digits allowed; a range exception on any
   // other text.
   explicit EthAddr( std::string_view text );

   // The address as a 48-bit number, first byte highest. Bits above 48 are dropped, so that the
   // number behind ff:ff:ff:ff:ff:ff is zero.
   Korv::U64 number() const;
   static EthAddr fromNumber( Korv::U64 number );

   std::span< Korv::U8 const, size > bytes() const { return bytes_; }
   bool isZero() const { return *this == EthAddr(); }
   std::string stringValue() const;

   auto operator<=>( EthAddr const & ) const = default;

   void textWrite( std::string & out ) const { out += stringValue(); }
   // Only the form that textWrite gives: one text per value.
   static EthAddr textRead( Korv::TextReader & in );

 private:
   Korv::U8 bytes_[size] = {};
};

static_assert( sizeof( EthAddr ) == 6 && alignof( EthAddr ) == 1 );

inline std::ostream & operator<<( std::ostream & out, EthAddr const & addr ) {
   return out << addr.stringValue();
}

} // namespace Pelk
