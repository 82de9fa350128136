#include "tests/simulation/Properties.h"

#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

namespace Simulation {

namespace {

using State = Mrp::MrpApplicantState;

struct Record {
   Mrp::MrpAttrDatabase const * entry = nullptr;
   bool marked = false; // for deletion

   State applicant() const { return entry->applicantState(); }
   Mrp::MrpRegistrarState registrar() const { return entry->registrarState(); }
   bool isRegistered() const { return registrar() != Mrp::mrpMt; }
   Bytes value() const { return valueOf( *entry ); }
};
using Records = std::map< Name, Record >;

std::ostream & operator<<( std::ostream & out, Record const & record ) {
   return out << "in " << Mrp::stringValue( record.applicant() ) << ' '
              << Mrp::stringValue( record.registrar() ) << " with " << hex( record.value() );
}

Mrp::MrpAttribute attribute( Name const & name ) {
   return Mrp::MrpAttribute( Agent::intfId( name.port ), name.kind.type, name.kind.key );
}

Mrp::MrpApplicationDatabase & tree( Mrp::MrpSm const & sm ) {
   return *sm.mrpStatus()->application( sm.mrpLib()->application() );
}

// All that is in the tree or pending, the pending copy ahead of the committed one.
Records records( Agent const & agent, U32 port ) {
   Mrp::MrpSm const & sm = agent.sm();
   Pelk::IntfId const intfId = Agent::intfId( port );
   Records all;
   auto const * const intf = tree( sm ).attrDatabase( intfId );
   for ( U8 type = 1; intf && type <= sm.maxAttrTypes(); ++type ) {
      auto const * const node = intf->intfTypeApplicant( type );
      if ( !node ) {
         continue;
      }
      for ( auto member = node->mrpAttribute().walk(); member; ++member ) {
         Name const name{ port, { type, member.key() } };
         all[name] = { member.value().ptr(), sm.isDeletePending( attribute( name ) ) };
      }
   }
   for ( auto member = sm.addPendingAttr().walk(); member; ++member ) {
      if ( member.key().intfId() == intfId ) {
         Name const name{ port, { member.key().attributeType(), member.key().attributeVal() } };
         require( !all[name].marked, agent, name, "pending and marked for deletion" );
         all[name].entry = member.value().ptr();
      }
   }
   return all;
}

bool isDeclared( State state ) {
   return state == Mrp::mrpQuietPassive || state == Mrp::mrpQuietActive;
}
bool isReachable( State state ) {
   return isDeclared( state ) || state == Mrp::mrpVeryAnxiousObserver ||
          state == Mrp::mrpAnxiousObserver || state == Mrp::mrpQuietObserver;
}

bool waitsOnTimer( Mrp::MrpRegistrarSm const & registrar, Name const & name ) {
   auto const * const shared =
      registrar.leaveSm().find( attribute( { name.port, { name.kind.type, 0 } } ) );
   auto const * const own = registrar.explicitLeaveSm().find( attribute( name ) );
   return ( shared && ( *shared )->leavePending( name.kind.key ) ) ||
          ( own && ( *own )->leavePending( name.kind.key ) );
}

void checkRecord( Agent const & agent, Name const & name, Record const & record ) {
   auto const declared = agent.declared().find( name );
   bool const isDeclaredThere = declared != agent.declared().end();
   require( isReachable( record.applicant() ), agent, name, record );
   require( isDeclared( record.applicant() ) == isDeclaredThere, agent, name, record,
            ", against what was declared" );
   require( !isDeclaredThere || record.value() == declared->second, agent, name, record,
            ", not the value declared" );
   require( record.isRegistered() == agent.told().contains( name ), agent, name, record,
            ", against what was told" );
   bool const waits = waitsOnTimer( *agent.sm().registrarSm(), name );
   if ( record.registrar() == Mrp::mrpLv ) {
      require( waits || agent.hasHadKeyZero( name.port, name.kind.type ), agent, name,
               "waits in Lv on no timer" );
   } else {
      require( !waits || agent.isSwept( name.port ), agent, name, record, ", waits on a timer" );
   }
}

void checkIndex( Agent const & agent, U32 port, Records const & all ) {
   Mrp::MrpSm const & sm = agent.sm();
   for ( auto const & [name, record] : all ) {
      auto const * const index =
         sm.mrpAttrIter( Mrp::MrpAttrIter::Key( Agent::intfId( port ), name.kind.type ) );
      require( record.marked || ( index && index->attributeKey( name.kind.key ) ), agent, name,
               "not in the index" );
   }
   for ( U8 type = 1; type <= sm.maxAttrTypes(); ++type ) {
      auto const * const index =
         sm.mrpAttrIter( Mrp::MrpAttrIter::Key( Agent::intfId( port ), type ) );
      if ( !index ) {
         continue;
      }
      require( !index->attributeKey().empty(), agent, { port, { type, 0 } }, "an empty index" );
      for ( auto member = index->attributeKey().walk(); member; ++member ) {
         Name const name{ port, { type, member.key() } };
         require( all.contains( name ), agent, name, "in the index and nowhere else" );
      }
   }
}

void checkLeaveAll( Agent const & agent, U32 port, Korv::Seconds longestPeriod ) {
   Mrp::MrpSm const & sm = agent.sm();
   auto const * const machine = sm.leaveAllSm()->intfLeaveAllSm( Agent::intfId( port ) );
   require( ( machine != nullptr ) == agent.isUp( port ), agent, { port, {} },
            "LeaveAll, or none" );
   for ( U8 type = 1; machine && type <= sm.maxAttrTypes(); ++type ) {
      auto const * const timer = machine->leaveAllPending( type );
      Korv::Seconds const due = timer ? timer->timestamp() - Korv::now() : Korv::never;
      require( due > -0.21 && due <= longestPeriod, agent, { port, { type, 0 } },
               "the next LeaveAll is due in ", due );
      Mrp::MrpLeaveAllKey const key( Agent::intfId( port ), type );
      require( tree( sm ).leaveAllTime( key ) > 0, agent, { port, { type, 0 } },
               "no LeaveAll time is published" );
   }
}

} // namespace

void require( bool holds, Agent const & agent, std::string const & words ) {
   if ( !holds ) {
      std::ostringstream out;
      out << "at " << Korv::now() << " agent " << agent.number() << ": " << words;
      throw Violation( out.str() );
   }
}

void checkAlways( Agent const & agent, Korv::Seconds longestPeriod ) {
   Mrp::MrpSm const & sm = agent.sm();
   if ( agent.standby() ) {
      require( !sm.parseContext() && sm.mrpAttrIter().empty(), agent, "works in standby" );
      return;
   }
   Records all;
   for ( U32 port = 0; port < agent.ports(); ++port ) {
      Records const here = records( agent, port );
      checkIndex( agent, port, here );
      checkLeaveAll( agent, port, longestPeriod );
      for ( auto const & [name, record] : here ) {
         if ( !record.marked ) {
            checkRecord( agent, name, record );
            all.emplace( name, record );
         }
      }
   }
   for ( Book const * const book : { &agent.declared(), &agent.told() } ) {
      for ( auto const & [name, value] : *book ) {
         require( all.contains( name ), agent, name, "declared or told of, and not there" );
      }
   }
   for ( auto member = sm.deletePendingAttr().walk(); member; ++member ) {
      Mrp::MrpAttribute const & marked = member.key();
      auto const * const intf = tree( sm ).attrDatabase( marked.intfId() );
      auto const * const node = intf ? intf->intfTypeApplicant( marked.attributeType() ) : nullptr;
      require( node && node->mrpAttribute( marked.attributeVal() ), agent,
               "marked for deletion and not in the tree" );
   }
   require( sm.mrpParsedAttribute().size() == 0 && sm.mrpParsedAttributeKey().empty() &&
               sm.msrpParsedDomainKey().empty() && sm.mrpRxLeaveAll().empty(),
            agent, "something of a frame is left" );
   require( sm.mrpLib()->mrpOutIntfQueue().empty(), agent, "an interface is left in the queue" );
   require( !sm.parseContext()->sendTxLvAll(), agent, "a LeaveAll mark is left" );
   require( sm.mrpLib()->application() == Mrp::MVRP || sm.mrpCounters()->numOfMalformedPkts() == 0,
            agent, "a malformed MSRP frame" );
}

bool isAtRest( Agent const & agent, U32 port, U8 type ) {
   Mrp::MrpSm const & sm = agent.sm();
   auto const holds = [&]( auto const & collection ) {
      for ( auto member = collection.walk(); member; ++member ) {
         if ( member.key().intfId() == Agent::intfId( port ) &&
              member.key().attributeType() == type ) {
            return true;
         }
      }
      return false;
   };
   return !holds( sm.registrarSm()->leaveSm() ) && !holds( sm.registrarSm()->explicitLeaveSm() ) &&
          !holds( sm.addPendingAttr() ) && !holds( sm.deletePendingAttr() );
}

void checkAtRest( Agent const & agent, U32 port, U8 type, Book const & expected ) {
   for ( auto const & [name, record] : records( agent, port ) ) {
      if ( name.kind.type != type ) {
         continue;
      }
      require( isDeclared( record.applicant() ) || record.isRegistered() ||
                  agent.refuses( name.kind ),
               agent, name, record, ", left behind" );
      auto const found = expected.find( name );
      require( found == expected.end() || !record.isRegistered() || found->second.empty() ||
                  found->second == record.value(),
               agent, name, record, ", not the value that a neighbour declares" );
   }
   require( !agent.sm().mrpLib()->mrpTxPacketContext( Agent::intfId( port ) ), agent,
            { port, { type, 0 } }, "a first packet context is open" );
}

} // namespace Simulation
