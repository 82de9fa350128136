#include "mrp/platform/linux/Pam.h"

#include "mrp/platform/linux/Network.h"
#include "mrp/platform/pelk/ReceivePool.h"

#include <array>
#include <cerrno>

namespace Linux {

namespace {

// How many frames that are not for the reader one read passes over; the rest waits for the next.
constexpr int discardsARead = 64;

} // namespace

Pam::Pam( RealActivity & activity, Korv::Ptr< Network > network, Pelk::IntfId const & intfId,
          PacketSocket socket, KernelNetInfo::PamSettings const & settings )
   : network_( std::move( network ) ), intfId_( intfId ), socket_( std::move( socket ) ),
     settings_( settings ), watch_( activity, socket_.descriptor(), DescriptorWatch::reading,
                                    [this]( Korv::U32 ready ) { handleReady( ready ); } ) {
   network_->pamAdd( this );
}

Pam::~Pam() { network_->pamDel( this ); }

void Pam::handleReady( Korv::U32 ready ) {
   if ( ( ready & DescriptorWatch::failure ) != 0 && socket_.takeError() != 0 ) {
      ++receiveErrors_;
   }
   if ( ( ready & DescriptorWatch::reading ) == 0 ) {
      return;
   }
   Korv::Ptr< Pam > const self( this ); // the reader may close it
   asked_ = false;
   handleArrival();
   handleTaken(); // read, or left to be announced with the next
   watch_.modeIs( asked_ ? DescriptorWatch::Mode::whileReady : DescriptorWatch::Mode::atArrival );
}

Korv::Ptr< Pelk::Pkt > Pam::rxPkt() {
   asked_ = true;
   for ( int discarded = 0; discarded < discardsARead; ++discarded ) {
      auto const [outcome, frame] = socket_.receive();
      switch ( outcome ) {
      case PacketSocket::Outcome::nothing: return nullptr;
      case PacketSocket::Outcome::error: ++receiveErrors_; break;
      case PacketSocket::Outcome::tooLong: ++tooLong_; break;
      case PacketSocket::Outcome::ours: ++heldBack_; break;
      case PacketSocket::Outcome::frame: {
         // The kernel's run of the filter looked behind any tag, whatever its type.
         auto const pkt = settings_.filterProgram.accepts( frame.data(), frame.size() )
                             ? Pelk::receivePool().newPkt( frame.data(), frame.size() )
                             : nullptr;
         if ( pkt ) {
            ++received_;
            return pkt;
         }
         ++heldBack_;
         break;
      }
      }
   }
   return nullptr;
}

void Pam::txPkt( Korv::Ptr< Pelk::Pkt > pkt ) {
   std::array< FrameBytes, Pelk::Pkt::maxIovecs_ > parts;
   std::size_t count = 0;
   for ( auto const & iovec : pkt->iovecs() ) {
      parts[count++] = { iovec.data, iovec.bytes };
   }
   int error = 0;
   for ( Korv::U32 attempt = 0; attempt <= settings_.txRetries; ++attempt ) {
      error = socket_.send( std::span( parts ).first( count ) );
      if ( error == 0 ) {
         ++sent_;
         return;
      }
      if ( error != EAGAIN && error != ENOBUFS && error != EINTR ) {
         break;
      }
   }
   ++sendErrors_;
   lastSendError_ = error;
}

Korv::U64 Pam::overrun() const { return overrun_ += socket_.takeOverrun(); }

} // namespace Linux
