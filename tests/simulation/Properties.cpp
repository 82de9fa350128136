#include "tests/simulation/Properties.h"

#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

namespace Simulation {

namespace {

using Records = std::map< Name, Mrp::MrpAttrDatabase const * >;

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

Mrp::MrpAttribute attribute( Name const & name ) {
   return Mrp::MrpAttribute( Agent::intfId( name.port ), name.kind.type, name.kind.key );
}
Name nameOf( Mrp::MrpAttribute const & attribute ) {
   return { Agent::portOf( attribute.intfId() ),
            { attribute.attributeType(), attribute.attributeVal() } };
}

Mrp::MrpApplicationDatabase & tree( Mrp::MrpSm const & sm ) {
   return *sm.mrpStatus()->application( sm.mrpLib()->application() );
}

// All that is in the tree and not marked for deletion, or pending: the pending copy ahead of the
// committed one.
Records records( Agent const & agent ) {
   Mrp::MrpSm const & sm = agent.sm();
   Records all;
   for ( auto intf = tree( sm ).attrDatabase().walk(); intf; ++intf ) {
      for ( auto type = intf.value()->intfTypeApplicant().walk(); type; ++type ) {
         for ( auto entry = type.value()->mrpAttribute().walk(); entry; ++entry ) {
            all[{ Agent::portOf( intf.key() ), { type.key(), entry.key() } }] = entry.value().ptr();
         }
      }
   }
   for ( auto marked = sm.deletePendingAttr().walk(); marked; ++marked ) {
      Name const name = nameOf( marked.key() );
      require( all.erase( name ) == 1 && !sm.addPendingAttr().isMember( marked.key() ), agent, name,
               " is marked for deletion, and pending or not in the tree" );
   }
   for ( auto pending = sm.addPendingAttr().walk(); pending; ++pending ) {
      all[nameOf( pending.key() )] = pending.value().ptr();
   }
   return all;
}

void checkRecord( Agent const & agent, Name const & name, Mrp::MrpAttrDatabase const & entry ) {
   auto const expect = [&]( bool holds, char const * otherwise ) {
      if ( !holds ) {
         require( false, agent, name, says( entry ), otherwise );
      }
   };
   auto const declared = agent.declared().find( name );
   bool const wasDeclared = declared != agent.declared().end();
   expect( isDeclared( entry ) || isObserved( entry ), ", where nothing leads" );
   expect( isDeclared( entry ) == wasDeclared, ", against what was declared" );
   expect( !wasDeclared || valueOf( entry ) == declared->second, ", another value" );
   expect( isRegistered( entry ) == agent.told().contains( name ), ", against what was told" );

   auto const & machines = *agent.sm().registrarSm();
   auto const * const shared =
      machines.leaveSm().find( attribute( { name.port, { name.kind.type, 0 } } ) );
   auto const * const own = machines.explicitLeaveSm().find( attribute( name ) );
   bool const waits = ( shared && ( *shared )->leavePending( name.kind.key ) ) ||
                      ( own && ( *own )->leavePending( name.kind.key ) );
   bool const isLeaving = entry.registrarState() == Mrp::mrpLv;
   expect( !isLeaving || waits || agent.hasHadKeyZero( name.port, name.kind.type ),
           ", waits on no timer" );
   expect( isLeaving || !waits || agent.isSwept( name.port ), ", waits on a timer" );
}

void checkIndex( Agent const & agent, Records const & all ) {
   std::set< Name > indexed;
   for ( auto index = agent.sm().mrpAttrIter().walk(); index; ++index ) {
      auto const & keys = index.value()->attributeKey();
      require( !keys.empty(), agent, "has an empty index" );
      for ( auto key = keys.walk(); key; ++key ) {
         Name const name{ Agent::portOf( index.key().intfId() ),
                          { index.key().attributeType(), key.key() } };
         require( all.contains( name ) || agent.sm().isDeletePending( attribute( name ) ), agent,
                  name, " is in the index and nowhere else" );
         indexed.insert( name );
      }
   }
   for ( auto const & [name, entry] : all ) {
      require( indexed.contains( name ), agent, name, " is not in the index" );
   }
}

void checkLeaveAll( Agent const & agent, U32 port, Korv::Seconds longestPeriod ) {
   Mrp::MrpSm const & sm = agent.sm();
   Pelk::IntfId const intfId = Agent::intfId( port );
   auto const * const machine = sm.leaveAllSm()->intfLeaveAllSm( intfId );
   require( ( machine != nullptr ) == agent.isUp( port ), agent, "LeaveAll, or none, on ", intfId );
   for ( U8 type = 1; machine && type <= sm.maxAttrTypes(); ++type ) {
      Name const name{ port, { type, 0 } };
      auto const * const timer = machine->leaveAllPending( type );
      Korv::Seconds const due = timer ? timer->timestamp() - Korv::now() : Korv::never;
      require( due > -0.21 && due <= longestPeriod, agent, name, ": the next LeaveAll is in ",
               due );
      require( tree( sm ).leaveAllTime( { intfId, type } ) > 0, agent, name,
               ": no LeaveAll time is published" );
   }
}

} // namespace

void checkAlways( Agent const & agent, Korv::Seconds longestPeriod ) {
   Mrp::MrpSm const & sm = agent.sm();
   if ( agent.standby() ) {
      require( !sm.parseContext() && sm.mrpAttrIter().empty(), agent, "works in standby" );
      return;
   }
   Records const all = records( agent );
   checkIndex( agent, all );
   for ( auto const & [name, entry] : all ) {
      checkRecord( agent, name, *entry );
   }
   for ( Book const * const book : { &agent.declared(), &agent.told() } ) {
      for ( auto const & [name, value] : *book ) {
         require( all.contains( name ), agent, name, " is declared or told of, and not there" );
      }
   }
   for ( U32 port = 0; port < agent.ports(); ++port ) {
      checkLeaveAll( agent, port, longestPeriod );
   }
   require( agent.participant().isIdle(), agent, "has something of a frame left" );
   require( !sm.parseContext()->sendTxLvAll(), agent, "has a LeaveAll mark left" );
   require( sm.mrpLib()->application() == Mrp::MVRP || sm.mrpCounters()->numOfMalformedPkts() == 0,
            agent, "has read a malformed MSRP frame" );
}

void checkAtRest( Agent const & agent, Book const & expected ) {
   Mrp::MrpSm const & sm = agent.sm();
   if ( agent.standby() ) {
      return;
   }
   require( sm.registrarSm()->leaveSm().empty() && sm.registrarSm()->explicitLeaveSm().empty() &&
               sm.addPendingAttr().empty() && sm.deletePendingAttr().empty(),
            agent, "does not come to rest" );
   for ( U32 port = 0; port < agent.ports(); ++port ) {
      require( !agent.hasDevice( port ) ||
                  !sm.mrpLib()->mrpTxPacketContext( Agent::intfId( port ) ),
               agent, "has a first packet context open on ", Agent::intfId( port ) );
   }
   for ( auto const & [name, entry] : records( agent ) ) {
      require( isDeclared( *entry ) || isRegistered( *entry ) || agent.refuses( name.kind ) ||
                  !agent.hasDevice( name.port ),
               agent, name, says( *entry ), ", left behind" );
      auto const found = expected.find( name );
      require( found == expected.end() || !isRegistered( *entry ) || found->second.empty() ||
                  found->second == valueOf( *entry ),
               agent, name, says( *entry ), ", not the value that a neighbour declares" );
   }
}

} // namespace Simulation
