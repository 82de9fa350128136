// The first or the second frame under construction of an interface.
//
// MrpLib has operations of their own names for the two. Whoever sends names one of them by a flag,
// secondPktContext, as the applicant's table does: here the flag becomes the operation.
#pragma once

#include "mrp/frame/MrpLib.h"

namespace Mrp {

// Null if none is open.
inline MrpTxPacketContext * openFrame( MrpLib const & lib, Pelk::IntfId intfId,
                                       bool secondPktContext ) {
   return secondPktContext ? lib.mrpTxSecondPacketContext( intfId )
                           : lib.mrpTxPacketContext( intfId );
}

inline MrpTxPacketContext * openFrameIs( MrpLib & lib, Pelk::IntfId intfId, bool secondPktContext,
                                         Korv::Ptr< Pelk::Pkt > const & pkt ) {
   return secondPktContext ? lib.mrpTxSecondPacketContextIs( intfId, pkt )
                           : lib.mrpTxPacketContextIs( intfId, pkt );
}

inline void openFrameDel( MrpLib & lib, Pelk::IntfId intfId, bool secondPktContext ) {
   if ( secondPktContext ) {
      lib.mrpTxSecondPacketContextDel( intfId );
   } else {
      lib.mrpTxPacketContextDel( intfId );
   }
}

} // namespace Mrp
