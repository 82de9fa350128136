#include "mrp/observability/MrpAttrLogSm.h"

#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"

#include <algorithm>
#include <cerrno>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace Mrp {

MrpAttrLogSm::MrpAttrLogSm( Korv::Ptr< Korv::NboAttrLog::SocketOutSm > nboAttrLogOutSm )
   : nboAttrLogOutSm_( std::move( nboAttrLogOutSm ) ) {
   handleInitialized();
}

void MrpAttrLogSm::handleInitialized() {
   trace( 3, "MrpAttrLogSm::handleInitialized()" );
   Korv::assertThat( !initialized(), "!initialized()" );
   if ( !nboAttrLogOutSm_ ) {
      return;
   }
   socketOutSm_.notifierIs( nboAttrLogOutSm_.ptr() );
   handleSockFd();
   initialized_ = true;
}

void MrpAttrLogSm::handleSockFd() { attrLogSockFdIs( std::max( nboAttrLogOutSm_->sockFd(), -1 ) ); }

void MrpAttrLogSm::attrLogSockFdIs( Korv::S32 fd ) {
   if ( fd != attrLogSockFd_ ) {
      attrLogSockFd_ = fd;
      handleAttrLogSockFd();
   }
}

void MrpAttrLogSm::handleAttrLogSockFd() {
   if ( attrLogSockFd_ == -1 ) {
      return;
   }
   int size = 0;
   socklen_t length = sizeof size;
   if ( getsockopt( attrLogSockFd_, SOL_SOCKET, SO_SNDBUF, &size, &length ) != 0 ) {
      size_ = -1;
      threshold_ = -1;
   } else {
      size_ = size;
      threshold_ = size / 2;
   }
   trace( 3, "handleAttrLogSockFd", "(), Socket Fd:", attrLogSockFd_,
          ", Kernel Tx Buffer Size:", size_, ", Kernel Tx Buffer Threshold:", threshold_ );
}

Korv::S32 MrpAttrLogSm::getAttrLogKernTxBufferUsage() const {
   if ( attrLogSockFd_ == -1 ) {
      return -1;
   }
   int unsent = -1;
   int const result = ioctl( attrLogSockFd_, TIOCOUTQ, &unsent );
   if ( result < 0 ) {
      Sornlog::log( Ring::ioctlFailed, errno );
      return result;
   }
   return unsent;
}

bool MrpAttrLogSm::isAttrLogOutClogged() {
   if ( !nboAttrLogOutSm_ ) {
      return false;
   }
   usage_ = getAttrLogKernTxBufferUsage();
   if ( usage_ <= threshold_ ) {
      return false;
   }
   Sornlog::log( Ring::txBufferAboveThreshold, usage_, threshold_ );
   trace( 3, "Tx Buffer usage: ", usage_, " is above threshold: ", threshold_ );
   return true;
}

} // namespace Mrp
