#include "tests/support/RecordingLib.h"

#include "mrp/frame/MrpSm.h"

#include <cstring>
#include <sstream>

namespace TestSupport {

namespace {

// The records keep the wire's bytes: that they do is the vocabulary's test.
template < class Record >
Bytes bytesOf( Record const & record ) {
   auto const * const first = reinterpret_cast< U8 const * >( &record );
   return Bytes( first, first + sizeof record );
}

template < class Record >
Record recordOf( Bytes const & value ) {
   Record record;
   std::memcpy( static_cast< void * >( &record ), value.data(), sizeof record );
   return record;
}

} // namespace

std::string Indication::text( Protocol protocol ) const {
   static constexpr char const * msrp[] = { "?", "talker", "failed", "listener", "domain" };
   std::ostringstream out;
   out << ( join ? "join " : "leave " );
   if ( protocol == Protocol::mvrp ) {
      out << "vlan " << key;
   } else if ( type == domainType ) {
      out << "domain " << key;
   } else {
      out << msrp[type <= 4 ? type : 0] << " 0x" << std::hex << key;
   }
   if ( join ) {
      out << ' ' << name( static_cast< Event >( event ) );
   }
   out << " on " << interface;
   return out.str();
}

Bytes RecordingLib::rxValue( U8 attributeType ) const {
   if ( application() == Mrp::MVRP ) {
      return bytesOf( mvrpVlanVectorRx() );
   }
   switch ( attributeType ) {
   case talkerType: return bytesOf( msrpTalkerAdvertiseRx() );
   case failedType: return bytesOf( msrpTalkerFailedRx() );
   case listenerType: return bytesOf( msrpListenerVectorRx() );
   case domainType: return bytesOf( msrpDomainVectorRx() );
   default: return {};
   }
}

void RecordingLib::txValueIs( U8 attributeType, Bytes const & value ) {
   if ( application() == Mrp::MVRP ) {
      return mvrpVlanVectorTxIs( recordOf< Mrp::MvrpVlanAttribute >( value ) );
   }
   switch ( attributeType ) {
   case talkerType:
      return msrpTalkerAdvertiseTxIs( recordOf< Mrp::MsrpTalkerAdvertiseAttribute >( value ) );
   case failedType:
      return msrpTalkerFailedTxIs( recordOf< Mrp::MsrpTalkerFailedAttribute >( value ) );
   case listenerType:
      return msrpListenerVectorTxIs( recordOf< Mrp::MsrpListenerAttribute >( value ) );
   default: return msrpDomainVectorTxIs( recordOf< Mrp::MsrpDomainAttribute >( value ) );
   }
}

Indication RecordingLib::taken( bool join, Mrp::MrpParameters const & parameters ) {
   Indication indication;
   indication.join = join;
   indication.time = Korv::now();
   indication.interface = parameters.intfId().stringValue();
   indication.type = parameters.attributeType();
   indication.event = parameters.attributeEvent();
   indication.key = mrpSm()->parseContext()->attributeKey();
   indication.value = rxValue( parameters.attributeType() );
   indications.push_back( indication );
   return indication;
}

bool RecordingLib::mrpJoinIndication( Mrp::MrpParameters const & parameters ) {
   if ( !recording ) {
      return false;
   }
   Indication const indication = taken( true, parameters );
   bool const refused = refuse && refuse( indication );
   if ( react ) {
      react( indication );
   }
   return refused;
}

void RecordingLib::mrpLeaveIndication( Mrp::MrpParameters const & parameters ) {
   if ( !recording ) {
      return;
   }
   Indication const indication = taken( false, parameters );
   if ( react ) {
      react( indication );
   }
}

void RecordingLib::msrpTalkerAdvertiseRxIs( Mrp::MsrpTalkerAdvertiseAttribute const & v ) {
   note( "msrpTalkerAdvertiseRxIs" );
   MrpLib::msrpTalkerAdvertiseRxIs( v );
}
void RecordingLib::msrpTalkerFailedRxIs( Mrp::MsrpTalkerFailedAttribute const & v ) {
   note( "msrpTalkerFailedRxIs" );
   MrpLib::msrpTalkerFailedRxIs( v );
}
void RecordingLib::msrpListenerVectorRxIs( Mrp::MsrpListenerAttribute const & v ) {
   note( "msrpListenerVectorRxIs" );
   MrpLib::msrpListenerVectorRxIs( v );
}
void RecordingLib::msrpDomainVectorRxIs( Mrp::MsrpDomainAttribute const & v ) {
   note( "msrpDomainVectorRxIs" );
   MrpLib::msrpDomainVectorRxIs( v );
}
void RecordingLib::mvrpVlanVectorRxIs( Mrp::MvrpVlanAttribute const & v ) {
   note( "mvrpVlanVectorRxIs" );
   MrpLib::mvrpVlanVectorRxIs( v );
}
void RecordingLib::msrpTalkerAdvertiseTxIs( Mrp::MsrpTalkerAdvertiseAttribute const & v ) {
   note( "msrpTalkerAdvertiseTxIs" );
   MrpLib::msrpTalkerAdvertiseTxIs( v );
}
void RecordingLib::msrpTalkerFailedTxIs( Mrp::MsrpTalkerFailedAttribute const & v ) {
   note( "msrpTalkerFailedTxIs" );
   MrpLib::msrpTalkerFailedTxIs( v );
}
void RecordingLib::msrpListenerVectorTxIs( Mrp::MsrpListenerAttribute const & v ) {
   note( "msrpListenerVectorTxIs" );
   MrpLib::msrpListenerVectorTxIs( v );
}
void RecordingLib::msrpDomainVectorTxIs( Mrp::MsrpDomainAttribute const & v ) {
   note( "msrpDomainVectorTxIs" );
   MrpLib::msrpDomainVectorTxIs( v );
}
void RecordingLib::mvrpVlanVectorTxIs( Mrp::MvrpVlanAttribute const & v ) {
   note( "mvrpVlanVectorTxIs" );
   MrpLib::mvrpVlanVectorTxIs( v );
}

} // namespace TestSupport
