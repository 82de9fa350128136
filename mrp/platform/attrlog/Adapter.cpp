#include "mrp/platform/attrlog/Adapter.h"

#include "mrp/platform/attrlog/Input.h"
#include "mrp/platform/korv/RangeException.h"

#include <algorithm>

namespace Korv::NboAttrLog {

Adapter::~Adapter() {
   if ( output_ && output_->isNewcomer( *this ) ) {
      output_->newcomerDel();
   }
   freeResyncState();
   inputIs( nullptr, 0 );
}

void Adapter::doRemountSelf( Output * output ) {
   freeResyncState();
   suspended_ = false;
   std::size_t limit = noLimit;
   doDropChildren( limit );
   output_ = nullptr;
   if ( output && hasEntity() ) {
      doStart( output, 0, 0 );
   }
}

void Adapter::doStart( Output * output, U64 parent, U16 parentAttrId ) {
   output_ = output;
   identifier_ = output->newIdentifier();
   bool const room = output->continueFlowOut();
   if ( !room || !doSerializeAll( parent, parentAttrId ) ) {
      doSerializeOrphan( parent, parentAttrId );
      flowOutIs( firstOwnAttr );
      doMarkAll();
      if ( room ) {
         doResumeFlowOut();
      }
   }
   // Last, since it lets an entity go that was kept for this.
   doListen();
}

void Adapter::suspendedIs( bool suspended ) {
   if ( suspended == suspended_ ) {
      return;
   }
   suspended_ = suspended;
   if ( suspended && flowOut_ ) {
      flowQueuedIs( false );
   } else if ( !suspended && output_ ) {
      flowOutIs( firstOwnAttr );
      doMarkAll();
   }
}

void Adapter::flowOutIs( U16 attrId ) {
   if ( !flowOut_ ) {
      flowOut_ = createFlowOut();
      flowOut_->attrIdIs( attrId );
      syncModeIs( SyncMode::synchronising );
   } else {
      flowOut_->attrIdIs( std::min( flowOut_->attrId, attrId ) );
   }
   flowQueuedIs( true );
}

void Adapter::flowQueuedIs( bool queued ) {
   if ( queued == flowOut_->queued ) {
      return;
   }
   if ( queued ) {
      flowOut_->place = output_->flows_.insert( output_->flows_.end(), this );
      if ( output_->flows_.size() == 1 ) {
         output_->handleBytes();
      }
   } else {
      output_->flows_.erase( flowOut_->place );
   }
   flowOut_->queued = queued;
}

void Adapter::freeResyncState() {
   if ( flowOut_ ) {
      flowQueuedIs( false );
      flowOut_ = nullptr;
      syncModeIs( SyncMode::direct );
   }
}

void Adapter::doResumeFlowOut() {
   U16 const next = hasEntity() ? handleAttrFlowOut( flowOut_->attrId ) : U16{ 0 };
   if ( next != 0 ) {
      flowOut_->attrIdIs( next );
   } else {
      freeResyncState();
   }
}

Adapter::Way Adapter::wayOut( U16 attrId, char const * name ) {
   if ( suspended_ || handlingFlowInFor( attrId ) || !output_ || output_->failed() ) {
      return Way::stop;
   }
   if ( output_->readOnly() && !output_->convertedToWritable() ) {
      doThrowReadOnly( name );
   }
   bool const room = output_->hasSufficientBuffer();
   bool const write = syncMode_ == SyncMode::direct ? room || forced_
                                                    : prepareImmediateTransmission( attrId, !room );
   return write ? Way::write : Way::mark;
}

void Adapter::doThrowReadOnly( char const * attribute ) {
   throwRangeException( std::string( "read-only: " ) + attribute );
}

void Adapter::inputIs( Input * input, U64 identifier ) {
   if ( input_ ) {
      input_->adapterDel( identifier_ );
   }
   input_ = input;
   identifier_ = input ? identifier : identifier_;
   if ( input_ ) {
      input_->adapterIs( identifier_, *this );
   }
}

} // namespace Korv::NboAttrLog
