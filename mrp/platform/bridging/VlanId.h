// The number of a VLAN.
#pragma once

#include "mrp/platform/korv/Record.h"
#include "mrp/platform/korv/Text.h"
#include "mrp/platform/korv/Types.h"

#include <compare>
#include <ostream>

namespace Bridging {

// From `first` to `last`, or 0 for none, which only a VlanId made of nothing is. Throws a
// Korv::RangeException for any other number.
class VlanId {
 public:
   static constexpr Korv::U16 first = 1;
   static constexpr Korv::U16 last = 4094;

   constexpr VlanId() = default;
   explicit VlanId( Korv::U16 value );

   Korv::U16 value() const { return value_; }
   Korv::U32 hash() const { return Korv::hashOf( *this ); }

   auto operator<=>( VlanId const & ) const = default;

   static VlanId textRead( Korv::TextReader & in );

 private:
   Korv::U16 value_ = 0;

 public:
   static constexpr auto record =
      Korv::record( "Bridging::VlanId", Korv::field( "value", &VlanId::value_ ) );
};

inline std::ostream & operator<<( std::ostream & out, VlanId const & vlanId ) {
   return out << vlanId.value();
}

} // namespace Bridging
