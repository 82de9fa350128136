// The spanning tree's say: a port that stops forwarding in its base topology forgets what it
// registered there, and one that starts again asks everyone to declare anew.
//
// An interface is looked at in one tree instance alone, its base topology; which one that is
// follows from the mode and the native VLAN at the time of each change of a role.
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Format.h"
#include "mrp/topology/SpanningTreeMirrors.h"

namespace Mrp {

namespace {

using Role = Stp::MstiPortStatus::Role;

constexpr char const * commonTree = "Cist";
constexpr char const * noTree = "NoStp";
constexpr char const * backupPrefix = "Bkup";

// Modes in which the base topology depends on the native VLAN. baseSpanningTreeTopo knows those in
// which it does not; any other mode has none.
constexpr Korv::S32 backupMode = 100;
constexpr Korv::S32 treeOfVlanMode = 101;

bool isForwarding( Role role ) { return role == Role::root || role == Role::designated; }

// Null if the agent gave none.
Stp::Status const * statusOf( MrpSm const & sm ) {
   return sm.stpStatus() ? &sm.stpStatus()->record() : nullptr;
}

void postToAllTypes( MrpSm & sm, Pelk::IntfId intfId, MrpApplicantEvent applicantEvent,
                     MrpRegistrarEvent registrarEvent ) {
   for ( U8 type = 1; type <= sm.maxAttrTypes(); ++type ) {
      sm.leaveAllSm()->mrpPostLeaveAllToSm( intfId, type, applicantEvent, registrarEvent );
   }
}

} // namespace

Role MrpSm::oldPortRole( Pelk::IntfId intfId ) const {
   Role const * const found = oldPortRole_.find( intfId );
   return found ? *found : Role::unknown;
}

void MrpSm::handleRole( Korv::Name const & portName, Korv::Name const & mstiName,
                        Korv::Name const & stpiName ) {
   // The constructor makes the mirrors first of all: there is no interface yet to have a role.
   if ( !initialized_ ) {
      return;
   }
   Pelk::IntfId const intfId( portName.stringValue() );
   if ( mrpLib_->baseSpanningTreeTopo( intfId ) != mstiName ) {
      return;
   }
   if ( !desiredIntfDir_->intfDesired( intfId ) ) {
      return;
   }
   Sornlog::log( Ring::handleRole, portName, mstiName, stpiName );
   trace( 8, "MrpSm::handleRole( ", portName, ", ", mstiName, ", ", stpiName, " )" );
   Stp::Status const * const stp = statusOf( *this );
   Stp::StpiStatus const * const stpi = stp ? stp->stpiStatus( stpiName ) : nullptr;
   Stp::MstiStatus const * const msti = stpi ? stpi->mstiStatus( mstiName ) : nullptr;
   Stp::MstiPortStatus const * const port = msti ? msti->mstiPortStatus( portName ) : nullptr;
   if ( !port ) {
      return;
   }
   Role const oldRole = oldPortRole( intfId );
   Role const newRole = port->role();
   oldPortRole_.insertOrAssign( intfId, newRole );
   if ( standbyMode_ || newRole == oldRole ) {
      return;
   }
   trace( 8, "Port role for ", intfId, " changed from ", oldRole, " to ", newRole );
   // All other changes, a role's first appearance among them, mean nothing here.
   if ( isForwarding( oldRole ) && newRole == Role::alternate ) {
      trace( 8, "Flush! event occurred" );
      Sornlog::log( Ring::flushOccurred );
      postToAllTypes( *this, intfId, appFlush, regFlush );
   } else if ( oldRole == Role::alternate && isForwarding( newRole ) ) {
      trace( 8, "Re-declare! event occurred" );
      Sornlog::log( Ring::redeclareOccurred );
      postToAllTypes( *this, intfId, appRedeclare, regRedeclare );
   }
}

// The native VLAN is looked for, and meets its range, in every mode that the first two lines do
// not settle.
Korv::String8 MrpLib::baseSpanningTreeTopo( Pelk::IntfId intfId ) const {
   Stp::Status const * const stp = statusOf( *mrpSm_ );
   if ( !stp ) {
      return {};
   }
   switch ( stp->stpMode() ) {
   case 0:
   case 2:
   case 3: return commonTree;
   case -1: return noTree;
   default: break;
   }
   Bridging::VlanId const vlanId = getNativeVlanId( intfId );
   Bridging::VlanConfig const * const vlan = mrpSm_->brConfig()->vlanConfig( vlanId );
   if ( vlan && stp->stpMode() == backupMode ) {
      return Korv::format( "%s%d", backupPrefix, vlanId.value() );
   }
   if ( vlan && stp->stpMode() == treeOfVlanMode ) {
      return Stp::pvstInstanceName( *vlan );
   }
   return {};
}

Bridging::VlanId MrpLib::getNativeVlanId( Pelk::IntfId intfId ) const {
   auto const * const intf = mrpSm_->brConfig()->switchIntfConfig( intfId );
   U16 const number = intf ? intf->nativeVlan() : U16{ 0 };
   return number == 0 ? Bridging::VlanId() : Bridging::VlanId( number );
}

} // namespace Mrp
