#include "mrp/database/MrpAttrDatabase.h"

namespace Mrp {

Korv::Ptr< MrpAttrDatabase > MrpAttrDatabaseIs( U64 mrpAttributeKey ) {
   return Korv::newValidPtr< MrpAttrDatabase >( mrpAttributeKey );
}

void MrpAttrDatabase::attributeValueIs( U32 index, U8 byte ) {
   // A byte that its slot holds already is not announced. The slots below the count are those of a
   // span that begins in slot 0, as every value does.
   if ( index < attributeValue_.count() && attributeValue_.at( index ) == byte ) {
      return;
   }
   attributeValue_.put( ValueIndex( index ).value(), byte );
   notify( &Reactor::onAttributeValue, index );
}

void MrpAttrDatabase::putEach( void const * bytes, U32 size ) {
   Korv::Ptr< MrpAttrDatabase > const self( this ); // a watcher may end the attribute
   for ( U32 index = 0; index < size; ++index ) {
      attributeValueIs( index, static_cast< U8 const * >( bytes )[index] );
   }
}

void MrpAttrDatabase::attributeValueEnq( U8 byte ) {
   U32 const index = attributeValue_.position( attributeValue_.count() );
   attributeValue_.enq( byte );
   notify( &Reactor::onAttributeValue, index );
}

U8 MrpAttrDatabase::attributeValueDeq() {
   if ( attributeValue_.count() == 0 ) {
      return 0;
   }
   U32 const index = attributeValue_.head();
   U8 const byte = attributeValue_.deq();
   notify( &Reactor::onAttributeValue, index );
   return byte;
}

void MrpAttrDatabase::attributeValueDel( U32 index ) {
   if ( attributeValue_.del( ValueIndex( index ).value() ) ) {
      notify( &Reactor::onAttributeValue, index );
   }
}

void MrpAttrDatabase::attributeValueDelAll() {
   while ( attributeValue_.count() > 0 ) {
      attributeValueDeq();
   }
}

void MrpAttrDatabase::attributeValueMetadataIs( Korv::ByteQueueMetadata span ) {
   if ( span.count > Korv::byteQueueSlots ) {
      Korv::throwRangeException( "bad size" );
   }
   if ( span != attributeValue_.metadata() ) {
      attributeValue_.metadataIs( span );
      notify( &Reactor::onAttributeValueMetadata );
   }
}

} // namespace Mrp
