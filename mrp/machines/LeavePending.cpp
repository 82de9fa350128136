// Which attributes wait to leave, and on which timer.
//
// A received Lv puts the attribute on a machine of its own, in `explicitLeaveSm`. All other causes
// (a LeaveAll received or sent, a redeclaration) put it on the one machine of its interface and
// type, in `leaveSm`. An attribute can stand in both. Every attribute newly added to a shared
// machine pushes its timer out for all; one that waits already does not.
#include "mrp/frame/MrpSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/Trace.h"

namespace Mrp {

namespace {

// The key of the machine that an attribute shares with all of its interface and type.
MrpAttribute sharedKey( MrpAttribute const & attribute ) {
   return MrpAttribute( attribute.intfId(), attribute.attributeType(), 0 );
}

MrpAttribute namedAttribute( MrpParseContext const & context ) {
   return MrpAttribute( context.intfId(), context.attributeType(), context.attributeKey() );
}

void deleteEntry( MrpRegistrarSm::LeaveSms const & machines, MrpAttribute const & key,
                  U64 attributeKey ) {
   if ( machines.empty() ) {
      return;
   }
   if ( MrpLeaveSm * const machine = Korv::memberAt( machines, key ) ) {
      machine->leavePendingDel( attributeKey );
   }
}

} // namespace

MrpLeaveSm * MrpRegistrarSm::findOrMake( LeaveSms & machines, MrpAttribute const & key ) {
   return Korv::memberIs( machines, key, key, mrpSm_, timerWheel_ );
}

void MrpRegistrarSm::mrpAddAttrToLeavePending() {
   trace( 8, "void Mrp::MrpRegistrarSm::mrpAddAttrToLeavePending()" );
   MrpAttribute const attribute = namedAttribute( *mrpSm_->parseContext() );
   MrpLeaveSm * const machine = registrarEvent_ == regLv ? explicitLeaveSmIs( attribute )
                                                         : leaveSmIs( sharedKey( attribute ) );
   if ( !machine->leavePendingIs( attribute.attributeVal(), true ) ) {
      return;
   }
   bool const ownTime = registrarEvent_ == regTxLvAll &&
                        mrpConfig_->txLeaveAllExpiryTime() != MrpConfig::unsetTxLeaveAllExpiryTime;
   machine->doScheduleLeaveTimer( ownTime ? mrpConfig_->txLeaveAllExpiryTime()
                                          : mrpSm_->mrpGetLeaveTime( attribute.intfId() ) );
}

// Stops no timer and ends no machine: one with nothing left runs on until it fires.
void MrpRegistrarSm::mrpDeleteAttrFromLeavePending() {
   MrpAttribute const attribute = namedAttribute( *mrpSm_->parseContext() );
   deleteEntry( leaveSm_, sharedKey( attribute ), attribute.attributeVal() );
   deleteEntry( explicitLeaveSm_, attribute, attribute.attributeVal() );
}

namespace {

// The entry that goes is the one for the machine's own attributeVal. Of an explicit machine that
// is its only one; of a shared machine it is 0, so that one with other entries lives on, fires
// later and finds its attributes gone.
void cancel( MrpRegistrarSm::LeaveSms & machines, Pelk::IntfId intfId ) {
   for ( auto member = machines.walk(); member; ++member ) {
      if ( member.key().intfId() != intfId ) {
         continue;
      }
      Korv::Ptr< MrpLeaveSm > const machine = member.value();
      U64 const attributeVal = machine->key().attributeVal();
      trace( 8, "Intf: ", intfId,
             " Leave pending deleted: ", machine->leavePending( attributeVal ) );
      machine->leavePendingDel( attributeVal );
      if ( machine->leavePending().empty() ) {
         MrpAttribute const key = member.key();
         machines.erase( key );
      }
   }
}

} // namespace

void MrpRegistrarSm::mrpCancelLeavePending( Pelk::IntfId intfId ) {
   cancel( leaveSm_, intfId );
   cancel( explicitLeaveSm_, intfId );
}

} // namespace Mrp
