// Text forms and their exact inverse. The texts are written out: they are what users and other
// programs read.
#include "mrp/platform/korv/RangeException.h"
#include "mrp/vocabulary/Mrp.h"
#include "mrp/vocabulary/MrpMsrp.h"
#include "mrp/vocabulary/MrpMvrp.h"

#include <gtest/gtest.h>

namespace Mrp {
namespace {

template < class T >
void expectForm( T const & value, std::string const & form ) {
   EXPECT_EQ( stringValue( value ), form );
   EXPECT_EQ( Korv::fromText< T >( form ), value );
   EXPECT_THROW( Korv::fromText< T >( form + " " ), Korv::RangeException );
   EXPECT_THROW( Korv::fromText< T >( " " + form ), Korv::RangeException );
}

// The failure tells the field, and the record's field that the field is in.
template < class T >
void expectFailure( std::string const & form, std::string const & words ) {
   try {
      Korv::fromText< T >( form );
      ADD_FAILURE() << "was read: " << form;
   } catch ( Korv::RangeException const & failure ) {
      EXPECT_NE( std::string( failure.what() ).find( words ), std::string::npos ) << failure.what();
   }
}

Pelk::IntfId const et1( "et1" );
MsrpTalkerAdvertiseAttribute const talker( 0xFFFFFFFFFFFFFFFF,
                                           { { 0x91, 0xE0, 0xF0, 0x00, 0xFE, 0x0A }, 2 },
                                           { 1500, 3 }, { 5, true }, 4000000000 );
std::string const talkerForm =
   "Value('Mrp::MsrpTalkerAdvertiseAttribute', ** {'streamId': 18446744073709551615, 'frame': "
   "Value('Mrp::DataFrameParameters', ** {'dmac': 91:e0:f0:00:fe:0a, 'vlanId': 2}), 'tSpec': "
   "Value('Mrp::Tspec', ** {'maxFrameSize': 1500, 'maxIntervalFrames': 3}), 'priorityAndRank': "
   "176, 'accumulatedLatency': 4000000000})";

TEST( TextForms, ofKeys ) {
   expectForm( MrpAttribute( et1, 3, 0x8000000000000000 ),
               "Value('Mrp::MrpAttribute', ** {'intfId': et1, 'attributeType': 3, 'attributeVal': "
               "9223372036854775808})" );
   MrpParameters parameters( et1, 1, 5 );
   parameters.newEventIs( true );
   expectForm( parameters, "Value('Mrp::MrpParameters', ** {'intfId': et1, 'attributeType': 1, "
                           "'attributeEvent': 5, 'newEvent': true})" );
   expectForm( MrpParsedAttributeKey( 4, 6 ),
               "Value('Mrp::MrpParsedAttributeKey', ** {'attributeType': 4, 'attributeKey': 6})" );
   expectForm( MrpLeaveAllKey( Pelk::IntfId( "a,b}" ), 2 ),
               "Value('Mrp::MrpLeaveAllKey', ** {'intfId': a,b}, 'attributeType': 2})" );
   expectForm( MrpAttrIterKey( Pelk::IntfId(), 2 ),
               "Value('Mrp::MrpAttrIter::Key', ** {'intfId': , 'attributeType': 2})" );
}

TEST( TextForms, ofValues ) {
   expectForm(
      MsrpTalkerFailedAttribute( talker, { 32768, 7 } ),
      "Value('Mrp::MsrpTalkerFailedAttribute', ** {'talkerAdvertiseAttribute': " + talkerForm +
         ", 'failureInformation': Value('Mrp::FailureInformation', ** {'bridgeId': 32768, "
         "'failureCode': 7})})" );
   expectForm( MsrpListenerAttribute( 1, askingFailed ),
               "Value('Mrp::MsrpListenerAttribute', ** {'streamId': 1, 'listenerEvent': "
               "askingFailed})" );
   expectForm( MsrpDomainAttribute( 6, 3, 4095 ),
               "Value('Mrp::MsrpDomainAttribute', ** {'srClassId': 6, 'srClassPriority': 3, "
               "'srClassVID': 4095})" );
   expectForm( MsrpListenerStreamAttribute( 4711 ), "4711" );
   expectForm( MvrpVlanAttribute( 65535 ), "65535" );
   // Undefined bits are not read.
   EXPECT_EQ( Korv::fromText< PriorityAndRank >( "127" ), PriorityAndRank( 3, true ) );
}

TEST( TextForms, failuresNameTheField ) {
   expectFailure< MrpLeaveAllKey >(
      "Value('Mrp::MrpLeaveAllKey', ** {'intfId': et1, 'attributeType': 256})",
      "in field 'attributeType'" );
   expectFailure< MvrpVlanAttribute >( "65536", "in field 'vlanId'" );
   std::string inner = talkerForm;
   inner.replace( inner.find( "0a," ), 2, "0A" );
   expectFailure< MsrpTalkerAdvertiseAttribute >( inner, "in field 'dmac', in field 'frame'" );
   // Another record's form, and fields in another order.
   expectFailure< MrpAttrIterKey >( stringValue( MrpLeaveAllKey( et1, 2 ) ), "" );
   expectFailure< MrpLeaveAllKey >(
      "Value('Mrp::MrpLeaveAllKey', ** {'attributeType': 2, 'intfId': et1})", "" );
}

} // namespace
} // namespace Mrp
