// Whether the mirror stream's socket is filling.
//
// Owned by MrpSm and shared with the two database machines, which hold their commits off while
// more than half of the kernel's send buffer under the stream is unsent. The stream's own test
// sees only its own buffer; this is the kernel's view.
//
//  1. Descriptor, size, threshold and usage are -1 until known; with no stream they stay so, and
//     nothing is ever clogged.
//  2. The descriptor follows the writer's: an observer may come, go and come again.
#pragma once

#include "mrp/platform/attrlog/SocketOutSm.h"

namespace Mrp {

class MrpAttrLogSm : public Korv::PtrInterface {
 public:
   // The stream's socket writer, or null.
   explicit MrpAttrLogSm( Korv::Ptr< Korv::NboAttrLog::SocketOutSm > nboAttrLogOutSm );

   void handleInitialized();
   bool initialized() const { return initialized_; }

   // More than half of the send buffer is unsent. With no stream false.
   bool isAttrLogOutClogged();
   // The unsent bytes in the send queue; negative if that is not known.
   Korv::S32 getAttrLogKernTxBufferUsage() const;

   Korv::Ptr< Korv::NboAttrLog::SocketOutSm > const & nboAttrLogOutSm() const {
      return nboAttrLogOutSm_;
   }
   Korv::S32 attrLogSockFd() const { return attrLogSockFd_; }
   void attrLogSockFdIs( Korv::S32 fd );
   // Reads the size of the socket's send buffer.
   void handleAttrLogSockFd();
   Korv::S32 attrLogKernTxBufferSize() const { return size_; }
   Korv::S32 attrLogKernTxBufferThreshold() const { return threshold_; }
   // When last read.
   Korv::S32 attrLogKernTxBufferUsage() const { return usage_; }

 private:
   class KorvSocketOutSm : public Korv::NboAttrLog::SocketOutSm::Reactor {
    public:
      explicit KorvSocketOutSm( MrpAttrLogSm & sm ) : sm_( sm ) {}
      void onSockFd() override { sm_.handleSockFd(); }

    private:
      MrpAttrLogSm & sm_;
   };
   void handleSockFd();

   Korv::Ptr< Korv::NboAttrLog::SocketOutSm > nboAttrLogOutSm_;
   KorvSocketOutSm socketOutSm_{ *this };
   Korv::S32 attrLogSockFd_ = -1;
   Korv::S32 size_ = -1;
   Korv::S32 threshold_ = -1;
   Korv::S32 usage_ = -1;
   bool initialized_ = false;
};

} // namespace Mrp
