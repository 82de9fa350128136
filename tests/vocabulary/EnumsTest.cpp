#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"

#include <gtest/gtest.h>

#include <utility>

namespace Mrp {
namespace {

// What the compiler calls the enumerator: "... V = Mrp::mrpMt]".
template < auto V >
std::string compilerName() {
   std::string const function = __PRETTY_FUNCTION__;
   auto const begin = function.find( "V = " );
   auto const name = function.substr( begin, function.find_first_of( ";]", begin ) - begin );
   return name.substr( name.rfind( ':' ) + 1 );
}

template < class E, std::size_t... number >
void expectNamesOfCompiler( std::index_sequence< number... > ) {
   Korv::EnumInstance< E > const instance;
   auto check = [&]( E value, std::string const & name ) {
      EXPECT_EQ( stringValue( value ), name );
      EXPECT_EQ( instance( name ), value );
      EXPECT_EQ( instance( static_cast< U64 >( value ) ), value );
   };
   ( check( static_cast< E >( number ), compilerName< static_cast< E >( number ) >() ), ... );
   for ( U64 const none : { U64{ sizeof...( number ) }, U64{ 1 } << 32 } ) {
      EXPECT_THROW( instance( none ), Korv::RangeException );
   }
   EXPECT_THROW( instance( "" ), Korv::RangeException );
}
template < class... E >
void expectNamesOfCompiler() {
   ( expectNamesOfCompiler< E >( std::make_index_sequence< Korv::EnumNames< E >::names.size() >() ),
     ... );
}

TEST( Enums, textIsTheNameOfTheEnumerator ) {
   expectNamesOfCompiler< MrpApplication, MrpApplicantState, MrpApplicantEvent, MrpRegistrarState,
                          MrpRegistrarEvent, MrpThreePackedEvent, MrpLeaveAllEvent, MrpParseStatus,
                          MsrpAttrType, MvrpAttrType, MsrpListenerEvent >();
   // The constants do not run from 0.
   EXPECT_EQ( MrpConstantsInstance( stringValue( mrpMaxTxDataSz ) ), mrpMaxTxDataSz );
   EXPECT_EQ( MrpConstantsInstance( 0 ), endOfMark );
   EXPECT_THROW( MrpConstantsInstance( 1 ), Korv::RangeException );
   EXPECT_THROW( MrpConstantsInstance( "endOfMar" ), Korv::RangeException );
}

} // namespace
} // namespace Mrp
