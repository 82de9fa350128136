// Fixed numbers: of an MRPDU, and the defaults and bounds of the timers.
#pragma once

#include "mrp/vocabulary/Foundation.h"

namespace Mrp {

// Numbers with names, not a type that anything is stored in.
enum MrpConstants : U32 {
   endOfMark = 0,        // a 16-bit EndMark
   mrpMaxTxDataSz = 1500 // the largest MRPDU payload, and the bytes of a transmit buffer
};

std::string stringValue( MrpConstants value );
inline std::ostream & operator<<( std::ostream & out, MrpConstants value ) {
   return out << stringValue( value );
}

// As Korv::EnumInstance, for numbers that do not run from 0.
struct MrpConstantsConversion {
   MrpConstants operator()( U64 number ) const;
   MrpConstants operator()( std::string_view name ) const;
};
inline constexpr MrpConstantsConversion MrpConstantsInstance;

// No storage: any two are equal, and the text form is empty.
class MrpTimerConstants {
 public:
   static constexpr Korv::Seconds defaultLeaveTime = 0.6;
   static constexpr Korv::Seconds defaultLeaveAllTime = 10.0;
   static constexpr Korv::Seconds minLeaveTime = 0.6;
   static constexpr Korv::Seconds maxLeaveTime = 30.0;
   static constexpr Korv::Seconds minLeaveAllTime = 5.0;
   static constexpr Korv::Seconds maxLeaveAllTime = 300.0;

   bool operator==( MrpTimerConstants const & ) const = default;

   void textWrite( std::string & ) const {}
   static MrpTimerConstants textRead( Korv::TextReader & ) { return {}; }
};

} // namespace Mrp
