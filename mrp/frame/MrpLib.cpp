#include "mrp/frame/MrpLib.h"

#include "mrp/platform/korv/Members.h"

namespace Mrp {

Korv::Ptr< MrpLib > mrpLibFactory() { return Korv::newValidPtr< MrpLib >(); }

MrpLib::~MrpLib() {
   MrpLib::mrpTxPacketContextDelAll();
   MrpLib::mrpTxSecondPacketContextDelAll();
   MrpLib::mrpOutIntfQueueDelAll();
}

bool MrpLib::mrpJoinIndication( MrpParameters const & ) { return false; }
void MrpLib::mrpLeaveIndication( MrpParameters const & ) {}
void MrpLib::mrpLeaveAllIndication( MrpParameters const & ) {}

void MrpLib::applicationIs( MrpApplication v ) { application_ = v; }
void MrpLib::applicationMacAddrIs( Pelk::EthAddr const & v ) { applicationMacAddr_ = v; }
void MrpLib::applicationEtypeIs( U16 v ) { applicationEtype_ = v; }
void MrpLib::msrpTalkerAdvertiseRxIs( MsrpTalkerAdvertiseAttribute const & v ) { talkerRx_ = v; }
void MrpLib::msrpTalkerFailedRxIs( MsrpTalkerFailedAttribute const & v ) { talkerFailedRx_ = v; }
void MrpLib::msrpListenerVectorRxIs( MsrpListenerAttribute const & v ) { listenerRx_ = v; }
void MrpLib::msrpDomainVectorRxIs( MsrpDomainAttribute const & v ) { domainRx_ = v; }
void MrpLib::mvrpVlanVectorRxIs( MvrpVlanAttribute const & v ) { vlanRx_ = v; }
void MrpLib::msrpTalkerAdvertiseTxIs( MsrpTalkerAdvertiseAttribute const & v ) { talkerTx_ = v; }
void MrpLib::msrpTalkerFailedTxIs( MsrpTalkerFailedAttribute const & v ) { talkerFailedTx_ = v; }
void MrpLib::msrpListenerVectorTxIs( MsrpListenerAttribute const & v ) { listenerTx_ = v; }
void MrpLib::msrpDomainVectorTxIs( MsrpDomainAttribute const & v ) { domainTx_ = v; }
void MrpLib::mvrpVlanVectorTxIs( MvrpVlanAttribute const & v ) { vlanTx_ = v; }

namespace {

// Calls made() if the context is new; null if that takes it away.
template < class Made >
MrpTxPacketContext * findOrMake( MrpLib::TxPacketContexts & contexts, Pelk::IntfId intfId,
                                 Korv::Ptr< Pelk::Pkt > const & pkt, Made made ) {
   if ( MrpTxPacketContext * const found = Korv::memberAt( contexts, intfId ) ) {
      return found;
   }
   contexts.insertOrAssign( intfId, Korv::newValidPtr< MrpTxPacketContext >( intfId, pkt ) );
   made();
   return Korv::memberAt( contexts, intfId );
}

} // namespace

MrpTxPacketContext * MrpLib::mrpTxPacketContext( Pelk::IntfId intfId ) const {
   return Korv::memberAt( mrpTxPacketContext_, intfId );
}
MrpTxPacketContext * MrpLib::mrpTxPacketContextIs( Pelk::IntfId intfId,
                                                   Korv::Ptr< Pelk::Pkt > pkt ) {
   return findOrMake( mrpTxPacketContext_, intfId, pkt,
                      [&] { mrpTxPacketContextNotify( intfId ); } );
}
void MrpLib::mrpTxPacketContextDel( Pelk::IntfId intfId ) {
   if ( mrpTxPacketContext_.erase( intfId ) ) {
      mrpTxPacketContextNotify( intfId );
   }
}
void MrpLib::mrpTxPacketContextDel( TxPacketContexts::Walk const & member ) {
   mrpTxPacketContextDel( Pelk::IntfId( member.key() ) );
}
void MrpLib::mrpTxPacketContextDelAll() {
   for ( auto member = mrpTxPacketContext_.walk(); member; ++member ) {
      mrpTxPacketContextDel( member );
   }
}
void MrpLib::mrpTxPacketContextNotify( Pelk::IntfId intfId ) {
   notify( &Reactor::onMrpTxPacketContext, intfId );
}

MrpTxPacketContext * MrpLib::mrpTxSecondPacketContext( Pelk::IntfId intfId ) const {
   return Korv::memberAt( mrpTxSecondPacketContext_, intfId );
}
MrpTxPacketContext * MrpLib::mrpTxSecondPacketContextIs( Pelk::IntfId intfId,
                                                         Korv::Ptr< Pelk::Pkt > pkt ) {
   return findOrMake( mrpTxSecondPacketContext_, intfId, pkt,
                      [&] { mrpTxSecondPacketContextNotify( intfId ); } );
}
void MrpLib::mrpTxSecondPacketContextDel( Pelk::IntfId intfId ) {
   if ( mrpTxSecondPacketContext_.erase( intfId ) ) {
      mrpTxSecondPacketContextNotify( intfId );
   }
}
void MrpLib::mrpTxSecondPacketContextDel( TxPacketContexts::Walk const & member ) {
   mrpTxSecondPacketContextDel( Pelk::IntfId( member.key() ) );
}
void MrpLib::mrpTxSecondPacketContextDelAll() {
   for ( auto member = mrpTxSecondPacketContext_.walk(); member; ++member ) {
      mrpTxSecondPacketContextDel( member );
   }
}
void MrpLib::mrpTxSecondPacketContextNotify( Pelk::IntfId intfId ) {
   notify( &Reactor::onMrpTxSecondPacketContext, intfId );
}

Pelk::IntfId MrpLib::mrpOutIntfQueue( U32 position ) const {
   Pelk::IntfId const * const found = mrpOutIntfQueue_.find( position );
   return found ? *found : Pelk::IntfId();
}
U32 MrpLib::mrpOutIntfQueueEnq( Pelk::IntfId intfId ) {
   U32 const position = mrpOutIntfQueue_.enq( intfId );
   mrpOutIntfQueueNotify( position );
   return position;
}
Pelk::IntfId MrpLib::mrpOutIntfQueueDeq() {
   if ( mrpOutIntfQueue_.empty() ) {
      return Pelk::IntfId();
   }
   U32 const position = mrpOutIntfQueue_.frontPosition();
   Pelk::IntfId const oldest = mrpOutIntfQueue_.deq();
   mrpOutIntfQueueNotify( position );
   return oldest;
}
void MrpLib::mrpOutIntfQueueIs( U32 position, Pelk::IntfId intfId ) {
   if ( mrpOutIntfQueue_.put( position, intfId ) ) {
      mrpOutIntfQueueNotify( position );
   }
}
void MrpLib::mrpOutIntfQueueDel( U32 position ) {
   if ( mrpOutIntfQueue_.del( position ) ) {
      mrpOutIntfQueueNotify( position );
   }
}
void MrpLib::mrpOutIntfQueueDel( OutIntfQueue::Walk const & entry ) {
   mrpOutIntfQueueDel( entry.position() );
}
void MrpLib::mrpOutIntfQueueDelAll() {
   while ( !mrpOutIntfQueue_.empty() ) {
      mrpOutIntfQueueDel( mrpOutIntfQueue_.frontPosition() );
   }
}
void MrpLib::mrpOutIntfQueueNotify( U32 position ) {
   notify( &Reactor::onMrpOutIntfQueue, position );
}

void MrpLib::mrpCurrentTxIntfIs( Pelk::IntfId v ) { mrpCurrentTxIntf_ = v; }
void MrpLib::mrpSmIs( MrpSm * v ) { mrpSm_ = v; }

} // namespace Mrp
