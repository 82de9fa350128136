#include "command/script/ScriptValues.h"

#include "mrp/platform/korv/ByteQueue.h"

#include "command/report/ValueRecord.h"

namespace Command {

namespace {

// The field, or 0.
template < class T >
T field( ScriptNode const & value, std::string_view name,
         T max = std::numeric_limits< T >::max() ) {
   auto const found = value.find( name );
   return found ? found->whole< T >( 0, max ) : T{ 0 };
}

Pelk::EthAddr addressField( ScriptNode const & value, std::string_view name ) {
   auto const found = value.find( name );
   return found ? found->address() : Pelk::EthAddr();
}

// A bit: true, false, 1 or 0.
bool bitField( ScriptNode const & value, std::string_view name ) {
   auto const found = value.find( name );
   return found && ( found->isTruth() ? found->truth() : found->whole< Korv::U8 >( 0, 1 ) == 1 );
}

Mrp::MvrpVlanAttribute readKind( Mrp::VlanKind, ScriptNode const & value ) {
   value.checkKeys( { "vlanId" } );
   return Mrp::MvrpVlanAttribute( field< Korv::U16 >( value, "vlanId" ) );
}

Mrp::MsrpTalkerAdvertiseAttribute talkerFields( ScriptNode const & value ) {
   constexpr Korv::U8 highestPriority = 7;
   return { field< Korv::U64 >( value, "streamId" ),
            Mrp::DataFrameParameters( addressField( value, "dmac" ),
                                      field< Korv::U16 >( value, "vlanId" ) ),
            Mrp::Tspec( field< Korv::U16 >( value, "maxFrameSize" ),
                        field< Korv::U16 >( value, "maxIntervalFrames" ) ),
            Mrp::PriorityAndRank( field< Korv::U8 >( value, "priority", highestPriority ),
                                  bitField( value, "rank" ) ),
            field< Korv::U32 >( value, "accumulatedLatency" ) };
}

Mrp::MsrpTalkerAdvertiseAttribute readKind( Mrp::TalkerAdvertiseKind, ScriptNode const & value ) {
   value.checkKeys( { "streamId", "dmac", "vlanId", "maxFrameSize", "maxIntervalFrames", "priority",
                      "rank", "accumulatedLatency" } );
   return talkerFields( value );
}

Mrp::MsrpTalkerFailedAttribute readKind( Mrp::TalkerFailedKind, ScriptNode const & value ) {
   value.checkKeys( { "streamId", "dmac", "vlanId", "maxFrameSize", "maxIntervalFrames", "priority",
                      "rank", "accumulatedLatency", "bridgeId", "failureCode" } );
   return { talkerFields( value ),
            Mrp::FailureInformation( field< Korv::U64 >( value, "bridgeId" ),
                                     field< Korv::U8 >( value, "failureCode" ) ) };
}

Mrp::MsrpListenerAttribute readKind( Mrp::ListenerKind, ScriptNode const & value ) {
   value.checkKeys( { "streamId", "listenerEvent" } );
   auto const event = value.find( "listenerEvent" );
   return { field< Korv::U64 >( value, "streamId" ),
            event ? event->enumerator< Mrp::MsrpListenerEvent >() : Mrp::ignore };
}

Mrp::MsrpDomainAttribute readKind( Mrp::DomainKind, ScriptNode const & value ) {
   value.checkKeys( { "srClassId", "srClassPriority", "srClassVID" } );
   return { field< Korv::U8 >( value, "srClassId" ), field< Korv::U8 >( value, "srClassPriority" ),
            field< Korv::U16 >( value, "srClassVID" ) };
}

template < class Kind >
std::string nameOf( Kind ) {
   return Kind::application == Mrp::MSRP
             ? Mrp::stringValue( static_cast< Mrp::MsrpAttrType >( Kind::type ) )
             : Mrp::stringValue( static_cast< Mrp::MvrpAttrType >( Kind::type ) );
}

// Calls f( kind, record ) for each kind that the value names, in the order of the script.
template < class F >
void forEachKind( ScriptNode const & value, F && f ) {
   for ( auto const & [name, node] : value.members() ) {
      bool isKind = false;
      auto const read = [&, &key = name, &fields = node]( auto kind ) {
         if ( key == nameOf( kind ) ) {
            isKind = true;
            f( kind, readKind( kind, fields ) );
         }
      };
      std::apply( [&]( auto... kind ) { ( read( kind ), ... ); }, Mrp::AttributeKinds{} );
      if ( !isKind ) {
         node.fail( "there is no such kind of attribute, but vlanVector, talkerAdvertise, "
                    "talkerFailed, listenerVector and domainVector" );
      }
   }
}

} // namespace

std::function< void( Mrp::MrpLib & ) > readTxFields( ScriptNode const & value ) {
   std::vector< std::function< void( Mrp::MrpLib & ) > > loads;
   forEachKind( value, [&]( auto kind, auto const & record ) {
      loads.push_back(
         [record]( Mrp::MrpLib & lib ) { ( lib.*decltype( kind )::txIs )( record ); } );
   } );
   return [loads]( Mrp::MrpLib & lib ) {
      for ( auto const & load : loads ) {
         load( lib );
      }
   };
}

std::vector< Korv::U8 > readStoredValue( ScriptNode const & value, Mrp::MrpApplication application,
                                         Korv::U8 attributeType ) {
   std::vector< Korv::U8 > stored;
   if ( !value.isObject() ) {
      stored = value.bytes();
   } else {
      forEachKind( value, [&]( auto kind, auto const & record ) {
         using Kind = decltype( kind );
         if ( Kind::application != application || Kind::type != attributeType ) {
            value.fail( nameOf( kind ) + " is not the attribute's type" );
         }
         stored = bytesOf( record );
      } );
   }
   if ( stored.size() > Korv::byteQueueSlots ) {
      value.fail( "an attribute keeps at most " + std::to_string( Korv::byteQueueSlots ) +
                  " bytes" );
   }
   return stored;
}

} // namespace Command
