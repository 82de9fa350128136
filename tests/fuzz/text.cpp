// Text forms: any bytes read as a record of each type. What is accepted must come back from its
// own text, and that text must be the one that was read.
#include "mrp/platform/bridging/VlanId.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include "tests/fuzz/script/Check.h"

#include <cstdint>
#include <type_traits>

namespace {

using Fuzz::check;

// Reading drops the undefined bits of a PriorityAndRank.
template < class T >
constexpr bool isExact = !std::is_same_v< T, Mrp::PriorityAndRank > &&
                         !std::is_same_v< T, Mrp::MsrpTalkerAdvertiseAttribute > &&
                         !std::is_same_v< T, Mrp::MsrpTalkerFailedAttribute >;

template < class T >
void readAs( std::string_view text ) {
   try {
      T const value = Korv::fromText< T >( text );
      std::string const form = Korv::toText( value );
      check( Korv::fromText< T >( form ) == value, "a value comes back from its text", text );
      if constexpr ( std::is_same_v< T, Bridging::VlanId > ) {
         check( value.value() <= 4094, "a VLAN is at most 4094", text );
      }
      if constexpr ( isExact< T > ) {
         check( form == text, "a value has one text", text );
      }
   } catch ( Korv::RangeException const & ) {
   }
}

template < class... T >
void readAsEach( std::string_view text ) {
   ( readAs< T >( text ), ... );
}

// The process never forgets a name that it has read: only short ones, or the memory of a long run
// would go into them.
bool hasLongName( std::string_view text ) {
   constexpr std::string_view field = "'intfId': ";
   std::size_t const at = text.find( field );
   if ( at == std::string_view::npos ) {
      return false;
   }
   std::string_view const rest = text.substr( at + field.size() );
   return std::min( rest.find_first_of( ",}" ), rest.size() ) > 2;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   std::string_view const text( reinterpret_cast< char const * >( data ), size );
   using namespace Mrp;
   readAsEach< MrpParsedAttributeKey, ValueIndex, Pelk::EthAddr, Bridging::VlanId >( text );
   readAsEach< DataFrameParameters, Tspec, PriorityAndRank, FailureInformation,
               MsrpTalkerAdvertiseAttribute, MsrpTalkerFailedAttribute, MsrpListenerStreamAttribute,
               MsrpListenerAttribute, MsrpDomainAttribute, MvrpVlanAttribute >( text );
   readAsEach< MrpApplication, MrpApplicantState, MrpApplicantEvent, MrpRegistrarState,
               MrpRegistrarEvent, MrpThreePackedEvent, MsrpAttrType, MsrpListenerEvent >( text );
   if ( !hasLongName( text ) ) {
      readAsEach< MrpAttribute, MrpParameters, MrpLeaveAllKey, MrpAttrIterKey >( text );
   }
   return 0;
}
