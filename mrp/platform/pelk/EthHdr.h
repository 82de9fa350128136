// The 14 bytes at the front of an Ethernet frame, as they stand there.
#pragma once

#include "mrp/platform/korv/NetworkOrder.h"
#include "mrp/platform/pelk/EthAddr.h"

namespace Pelk {

class EthHdr {
 public:
   // The header of the frame that begins here; the frame has at least 14 bytes.
   static EthHdr & at( void * frame ) { return *static_cast< EthHdr * >( frame ); }
   static EthHdr const & at( void const * frame ) {
      return *static_cast< EthHdr const * >( frame );
   }

   EthAddr const & dst() const { return dst_; }
   EthAddr const & src() const { return src_; }
   Korv::U16 typeOrLen() const { return typeOrLen_; }

   void dstIs( EthAddr const & dst ) { dst_ = dst; }
   void srcIs( EthAddr const & src ) { src_ = src; }
   void typeOrLenIs( Korv::U16 typeOrLen ) { typeOrLen_ = typeOrLen; }

 private:
   EthAddr dst_;
   EthAddr src_;
   Korv::NetworkOrder< Korv::U16 > typeOrLen_;
};

static_assert( sizeof( EthHdr ) == 14 && alignof( EthHdr ) == 1 );

} // namespace Pelk
