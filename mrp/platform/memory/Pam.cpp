#include "mrp/platform/memory/Pam.h"

#include "mrp/platform/memory/Device.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include <algorithm>

namespace Memory {

namespace {

// A frame without room for a header, which the receive pool refuses.
Korv::Ptr< Pelk::Pkt > runt( FrameBytes frame ) {
   Korv::Ptr< Pelk::Pkt > const pkt = Pelk::globalPktManager().newPkt();
   if ( pkt ) {
      pkt->newSharedHeadData( frame.size() );
      std::copy( frame.begin(), frame.end(), pkt->frontData() );
   }
   return pkt;
}

} // namespace

Pam::Pam( Korv::Ptr< Device > device, KernelNetInfo::PamSettings const & settings )
   : device_( std::move( device ) ), settings_( settings ) {
   device_->pamAdd( this );
}

Pam::~Pam() { device_->pamDel( this ); }

Korv::Ptr< Pelk::Pkt > Pam::rxPkt() {
   if ( waiting_.empty() ) {
      return nullptr;
   }
   FrameBytes const frame = waiting_.deq();
   handleTaken();
   return frame.size() < Pelk::ReceivePool::frameBytesMin
             ? runt( frame )
             : Pelk::receivePool().newPkt( frame.data(), frame.size() );
}

void Pam::txPkt( Korv::Ptr< Pelk::Pkt > pkt ) {
   auto const iovecs = pkt->iovecs();
   if ( iovecs.size() == 1 ) {
      device_->transmit( { iovecs[0].data, iovecs[0].bytes } );
      return;
   }
   Frame frame;
   for ( auto const & iovec : iovecs ) {
      frame.insert( frame.end(), iovec.data, iovec.data + iovec.bytes );
   }
   device_->transmit( frame );
}

bool Pam::deliver( FrameBytes frame ) {
   if ( !settings_.filterProgram.accepts( frame.data(), frame.size() ) ) {
      ++heldBack_;
      return false;
   }
   return deliverPastFilter( frame );
}

bool Pam::deliverPastFilter( FrameBytes frame ) {
   if ( frame.size() < Pelk::ReceivePool::frameBytesMin ) {
      ++heldBack_;
      return false;
   }
   return deliverAnything( frame );
}

bool Pam::deliverAnything( FrameBytes frame ) {
   if ( settings_.rxQueueFrames != 0 && waiting_.size() >= settings_.rxQueueFrames ) {
      ++overrun_;
      return false;
   }
   waiting_.enq( frame );
   handleArrival(); // whoever reads may close this Pam
   return true;
}

} // namespace Memory
