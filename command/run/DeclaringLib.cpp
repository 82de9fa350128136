#include "command/run/DeclaringLib.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"

#include "command/report/RecordingLib.h"

#include <utility>

namespace Command {

DeclaringLib::DeclaringLib( Tell tell ) : tell_( std::move( tell ) ) {}
DeclaringLib::~DeclaringLib() = default;

void DeclaringLib::start( std::vector< Pelk::IntfId > const & interfaces ) {
   interfaces_ = interfaces;
   for ( Pelk::IntfId const intfId : interfaces_ ) {
      ports_[intfId];
   }
   pamWatch_.notifierIs( mrpSm()->pamCollection().ptr() );
   linkWatch_.start( mrpSm()->allIntfStatusDir(), interfaces_ );
   settleAllLater();
}

void DeclaringLib::stop() {
   for ( auto & [intfId, port] : ports_ ) {
      while ( !port.declared.empty() ) {
         withdraw( intfId, Name( port.declared.begin()->first ) );
      }
   }
   // This sends what is open.
   for ( Pelk::IntfId const intfId : std::exchange( interfaces_, {} ) ) {
      mrpInterfaceDisable( intfId );
   }
   // There is nothing to follow any more.
   ports_.clear();
   pass_.timeMinIs( Korv::never );
}

bool DeclaringLib::mrpJoinIndication( Mrp::MrpParameters const & indication ) {
   Happening const join = indicationOf( *this, Happening::Kind::join, indication );
   settleLater( join.attributeKey );
   ports_[join.intfId].told[Name( join.attributeType, join.attributeKey )] = join;
   tell_( join );
   return false;
}

void DeclaringLib::mrpLeaveIndication( Mrp::MrpParameters const & indication ) {
   Happening const leave = indicationOf( *this, Happening::Kind::leave, indication );
   settleLater( leave.attributeKey );
   ports_[leave.intfId].told.erase( Name( leave.attributeType, leave.attributeKey ) );
   tell_( leave );
}

void DeclaringLib::settleLater( U64 key ) {
   unsettled_.insert( key );
   pass_.doRunIn( 0 );
}

void DeclaringLib::settleAllLater() {
   isAllUnsettled_ = true;
   pass_.doRunIn( 0 );
}

void DeclaringLib::handlePam( Pelk::IntfId intfId ) {
   auto const port = ports_.find( intfId );
   if ( port != ports_.end() ) {
      port->second.isFresh = true;
      settleAllLater();
   }
}

void DeclaringLib::handlePass() {
   linkWatch_.refresh();
   for ( Pelk::IntfId const intfId : interfaces_ ) {
      followLink( intfId );
   }
   for ( auto & [intfId, port] : ports_ ) {
      if ( std::exchange( port.isFresh, false ) ) {
         // What stands there is of the time before.
         mrpCleanUpIntfDatabase( intfId );
         port.declared.clear();
         port.isAsking = true;
      }
   }
   Keys const noted = std::exchange( unsettled_, {} );
   if ( std::exchange( isAllUnsettled_, false ) ) {
      tellSilentLeaves();
      settle( allKeys() );
   } else {
      settle( noted );
   }
   for ( auto & [intfId, port] : ports_ ) {
      if ( std::exchange( port.isAsking, false ) ) {
         mrpSm()->mrpPamSm()->transmitAllLeaveAll( intfId );
      }
   }
}

void DeclaringLib::followLink( Pelk::IntfId intfId ) {
   bool const up = linkWatch_.isUp( intfId );
   if ( up == mrpSm()->desiredIntfDir()->intfDesired( intfId ) ) {
      return;
   }
   if ( up ) {
      mrpInterfaceEnable( intfId );
   } else {
      mrpInterfaceDisable( intfId );
   }
}

void DeclaringLib::tellSilentLeaves() {
   for ( auto & [intfId, port] : ports_ ) {
      for ( auto told = port.told.begin(); told != port.told.end(); ) {
         auto const & [type, key] = told->first;
         if ( isRegistered( intfId, type, key ) ) {
            ++told;
            continue;
         }
         Happening leave = std::move( told->second );
         told = port.told.erase( told );
         leave.kind = Happening::Kind::leave;
         leave.time = Korv::now();
         leave.attributeEvent = Mrp::lvEvent;
         tell_( leave );
      }
   }
}

DeclaringLib::Keys DeclaringLib::knownKeys( U8 attributeType ) const {
   Keys keys;
   for ( auto const & [intfId, port] : ports_ ) {
      for ( auto const & [name, value] : port.declared ) {
         if ( name.first == attributeType ) {
            keys.insert( name.second );
         }
      }
      auto const * const iter =
         mrpSm()->mrpAttrIter( Mrp::MrpAttrIter::Key( intfId, attributeType ) );
      if ( iter ) {
         for ( auto member = iter->attributeKey().walk(); member; ++member ) {
            keys.insert( member.key() );
         }
      }
   }
   return keys;
}

bool DeclaringLib::isRegistered( Pelk::IntfId intfId, U8 attributeType, U64 key ) const {
   auto const * const attribute =
      mrpSm()->mrpGetAttrFromDatabase( intfId, attributeType, key, true );
   return attribute && attribute->registrarState() != Mrp::mrpMt;
}

bool DeclaringLib::hasPam( Pelk::IntfId intfId ) const { return mrpSm()->pam( intfId ) != nullptr; }

bool DeclaringLib::isQuietObserver( Pelk::IntfId intfId, Name const & name ) const {
   auto const * const attribute =
      mrpSm()->mrpGetAttrFromDatabase( intfId, name.first, name.second, true );
   return attribute && attribute->applicantState() == Mrp::mrpQuietObserver;
}

void DeclaringLib::withdraw( Pelk::IntfId intfId, Name const & name ) {
   auto & declared = ports_[intfId].declared;
   auto const found = declared.find( name );
   if ( found == declared.end() ) {
      return;
   }
   Bytes const bytes = std::move( found->second );
   declared.erase( found );
   if ( !hasPam( intfId ) ) {
      return;
   }
   withValue( application(), name.first, bytes, [&]( auto kind, auto const & value ) {
      ( this->*decltype( kind )::txIs )( value );
   } );
   send( intfId, name.first, Mrp::lvEvent );
}

// The interface stands in the queue, for the door to run once, and in the parameters, which say
// where the machines run.
void DeclaringLib::send( Pelk::IntfId intfId, U8 attributeType, Mrp::MrpThreePackedEvent event ) {
   mrpOutIntfQueueEnq( intfId );
   mrpSendAttribute( Mrp::MrpParameters( intfId, attributeType, static_cast< U8 >( event ) ) );
}

} // namespace Command
