// An attribute's value as bytes, and as the record that these are.
#pragma once

#include "mrp/frame/AttributeKinds.h"

#include <cstring>
#include <span>
#include <vector>

namespace Command {

template < class Record >
std::vector< Korv::U8 > bytesOf( Record const & record ) {
   std::vector< Korv::U8 > bytes( sizeof record );
   std::memcpy( bytes.data(), &record, sizeof record );
   return bytes;
}

// f( kind, value ) if the bytes are a value of the type; false, with no call, if they are not.
template < class F >
bool withValue( Mrp::MrpApplication application, Korv::U8 attributeType,
                std::span< Korv::U8 const > bytes, F && f ) {
   bool isValue = false;
   Mrp::withAttributeKind( application, attributeType, [&]( auto kind ) {
      typename decltype( kind )::Value value;
      isValue = bytes.size() == sizeof value;
      if ( isValue ) {
         std::memcpy( &value, bytes.data(), sizeof value );
         f( kind, value );
      }
   } );
   return isValue;
}

} // namespace Command
