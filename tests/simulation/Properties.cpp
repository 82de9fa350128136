#include "tests/simulation/Properties.h"

#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

namespace Simulation {

namespace {

// States that last: the machine leaves the others before it comes to an end.
bool isDeclared( Mrp::MrpAttrDatabase const & entry ) {
   auto const state = entry.applicantState();
   return state == Mrp::mrpQuietPassive || state == Mrp::mrpQuietActive;
}
bool isObserved( Mrp::MrpAttrDatabase const & entry ) {
   auto const state = entry.applicantState();
   return state == Mrp::mrpVeryAnxiousObserver || state == Mrp::mrpAnxiousObserver ||
          state == Mrp::mrpQuietObserver;
}
bool isRegistered( Mrp::MrpAttrDatabase const & entry ) {
   return entry.registrarState() != Mrp::mrpMt;
}

std::string says( Mrp::MrpAttrDatabase const & entry ) {
   return " in " + Mrp::stringValue( entry.applicantState() ) + ' ' +
          Mrp::stringValue( entry.registrarState() ) + " with " + hex( valueOf( entry ) );
}

Mrp::MrpAttribute attribute( Port const & port, Kind const & kind ) {
   return Mrp::MrpAttribute( port.intfId, kind.attributeType(), kind.attributeKey() );
}

Mrp::MrpApplicationDatabase & tree( Mrp::MrpSm const & sm ) {
   return *sm.mrpStatus()->application( sm.mrpLib()->application() );
}

// All that is in the tree and not marked for deletion, or pending: the pending copy ahead of the
// committed one.
using Records = std::map< Kind, Mrp::MrpAttrDatabase const * >;

Records records( Port const & port ) {
   Mrp::MrpSm const & sm = port.agent->sm();
   Records all;
   if ( auto const * const intf = tree( sm ).attrDatabase( port.intfId ) ) {
      for ( auto type = intf->intfTypeApplicant().walk(); type; ++type ) {
         for ( auto entry = type.value()->mrpAttribute().walk(); entry; ++entry ) {
            all[{ type.key(), entry.key() }] = entry.value().ptr();
         }
      }
   }
   auto const kindOf = []( Mrp::MrpAttribute const & of ) {
      return Kind( of.attributeType(), of.attributeVal() );
   };
   for ( auto marked = sm.deletePendingAttr().walk(); marked; ++marked ) {
      Kind const kind = kindOf( marked.key() );
      require( marked.key().intfId() != port.intfId ||
                  ( all.erase( kind ) == 1 && !sm.addPendingAttr().isMember( marked.key() ) ),
               port, kind, " is marked for deletion, and pending or not in the tree" );
   }
   for ( auto pending = sm.addPendingAttr().walk(); pending; ++pending ) {
      if ( pending.key().intfId() == port.intfId ) {
         all[kindOf( pending.key() )] = pending.value().ptr();
      }
   }
   return all;
}

void checkRecord( Port const & port, Kind const & kind, Mrp::MrpAttrDatabase const & entry ) {
   auto const expect = [&]( bool holds, char const * otherwise ) {
      if ( !holds ) {
         require( false, port, kind, says( entry ), otherwise );
      }
   };
   auto const declared = port.declared.find( kind );
   bool const wasDeclared = declared != port.declared.end();
   expect( isDeclared( entry ) || isObserved( entry ), ", where nothing leads" );
   expect( isDeclared( entry ) == wasDeclared, ", against what was declared" );
   expect( !wasDeclared || valueOf( entry ) == declared->second, ", another value" );
   expect( isRegistered( entry ) == port.told.contains( kind ), ", against what was told" );

   U64 const key = kind.attributeKey();
   auto const & machines = *port.agent->sm().registrarSm();
   auto const * const shared =
      machines.leaveSm().find( attribute( port, { kind.attributeType(), 0 } ) );
   auto const * const own = machines.explicitLeaveSm().find( attribute( port, kind ) );
   bool const waits =
      ( shared && ( *shared )->leavePending( key ) ) || ( own && ( *own )->leavePending( key ) );
   bool const isLeaving = entry.registrarState() == Mrp::mrpLv;
   expect( !isLeaving || waits, ", waits on no timer" );
   expect( isLeaving || !waits || port.swept, ", waits on a timer" );
}

void checkIndex( Port const & port, Records const & all ) {
   std::size_t indexed = 0;
   for ( auto index = port.agent->sm().mrpAttrIter().walk(); index; ++index ) {
      auto const & keys = index.value()->attributeKey();
      require( !keys.empty(), port, " or another has an empty index" );
      for ( auto key = keys.walk(); index.key().intfId() == port.intfId && key; ++key ) {
         Kind const kind( index.key().attributeType(), key.key() );
         bool const exists = all.contains( kind );
         require( exists || port.agent->sm().isDeletePending( attribute( port, kind ) ), port, kind,
                  " is in the index and nowhere else" );
         indexed += exists;
      }
   }
   require( indexed == all.size(), port, " has attributes that are not in the index" );
}

void checkLeaveAll( Port const & port, Korv::Seconds longestPeriod ) {
   Mrp::MrpSm const & sm = port.agent->sm();
   auto const * const machine = sm.leaveAllSm()->intfLeaveAllSm( port.intfId );
   require( ( machine != nullptr ) == port.isUp(), port, " has LeaveAll, or none" );
   for ( U8 type = 1; machine && type <= sm.maxAttrTypes(); ++type ) {
      auto const * const timer = machine->leaveAllPending( type );
      Korv::Seconds const due = timer ? timer->timestamp() - Korv::now() : Korv::never;
      require( due > -0.21 && due <= longestPeriod, port, " type ", unsigned( type ),
               ": the next LeaveAll is in ", due );
      require( tree( sm ).leaveAllTime( { port.intfId, type } ) > 0, port, " type ",
               unsigned( type ), ": no LeaveAll time is published" );
   }
}

} // namespace

void checkAlways( Port & port, Korv::Seconds longestPeriod ) {
   Agent & agent = *port.agent;
   Mrp::MrpSm const & sm = agent.sm();
   if ( agent.standby() ) {
      require( !sm.parseContext() && sm.mrpAttrIter().empty(), port, " works in standby" );
      return;
   }
   Records const all = records( port );
   checkIndex( port, all );
   for ( auto const & [kind, entry] : all ) {
      checkRecord( port, kind, *entry );
   }
   for ( Book const * const book : { &port.declared, &port.told } ) {
      for ( auto const & [kind, value] : *book ) {
         require( all.contains( kind ), port, kind, " is declared or told of, and not there" );
      }
   }
   checkLeaveAll( port, longestPeriod );
   require( agent.isIdle(), port, " has something of a frame left" );
   require( !sm.parseContext()->sendTxLvAll(), port, " has a LeaveAll mark left" );
   require( agent.protocol() == Protocol::mvrp || agent.counters().numOfMalformedPkts() == 0, port,
            " has read a malformed MSRP frame" );
}

void checkAtRest( Port & port, Book const & expected ) {
   Mrp::MrpSm const & sm = port.agent->sm();
   if ( port.agent->standby() ) {
      return;
   }
   require( sm.registrarSm()->leaveSm().empty() && sm.registrarSm()->explicitLeaveSm().empty() &&
               sm.addPendingAttr().empty() && sm.deletePendingAttr().empty(),
            port, " does not come to rest" );
   require( !port.hasDevice || !sm.mrpLib()->mrpTxPacketContext( port.intfId ), port,
            " has a first packet context open" );
   for ( auto const & [kind, entry] : records( port ) ) {
      require( isDeclared( *entry ) || isRegistered( *entry ) || port.agent->refuses( kind ) ||
                  !port.hasDevice,
               port, kind, says( *entry ), ", left behind" );
      auto const found = expected.find( kind );
      require( found == expected.end() || !isRegistered( *entry ) || found->second.empty() ||
                  found->second == valueOf( *entry ),
               port, kind, says( *entry ), ", not the value that a neighbour declares" );
   }
}

} // namespace Simulation
