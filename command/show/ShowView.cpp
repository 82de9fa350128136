#include "command/show/ShowView.h"

#include "command/report/Words.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace Command {

namespace {

bool isDeclared( Mrp::MrpApplicantState state ) {
   switch ( state ) {
   case Mrp::mrpVeryAnxiousObserver:
   case Mrp::mrpAnxiousObserver:
   case Mrp::mrpQuietObserver:
   case Mrp::mrpLeavingObserver:
   case Mrp::mrpLeavingActive: return false;
   default: return true;
   }
}

class Gathering {
 public:
   Gathering( MrpObserver::Mirror const & mirror, ShowFilter const & filter )
      : config_( mirror.config() ), filter_( filter ) {
      view_.timersEnabled = config_.timersEnabled();
      view_.mrpFlooding = config_.mrpFlooding();
      view_.leaveTime = config_.leaveTime();
      view_.leaveAllTime = config_.leaveAllTime();
      view_.txLeaveAllExpiryTime = config_.txLeaveAllExpiryTime();
      Korv::forEachScalar( mirror.counters(), [&]( char const * name, auto value ) {
         view_.counters.emplace_back( name, value );
      } );
   }

   void addApplication( Mrp::MrpApplicationDatabase const & database ) {
      view_.application = database.mrpApplication();
      for ( auto intf = database.attrDatabase().walk(); intf; ++intf ) {
         for ( auto type = intf.value()->intfTypeApplicant().walk(); type; ++type ) {
            addAttributes( intf.key(), *type.value() );
         }
      }
      for ( auto time = database.leaveAllTime().walk(); time; ++time ) {
         if ( auto * const type = typeOf( time.key().intfId(), time.key().attributeType() ) ) {
            type->leaveAllPeriod = time.value();
         }
      }
   }

   ShowView result() {
      for ( auto time = config_.intfLeaveTime().walk(); time; ++time ) {
         interfaceOf( time.key() );
      }
      for ( auto time = config_.intfLeaveAllTime().walk(); time; ++time ) {
         interfaceOf( time.key() );
      }
      for ( auto & [intfId, known] : interfaces_ ) {
         for ( auto const & [number, type] : known.types ) {
            known.interface.types.push_back( type );
         }
         view_.interfaces.push_back( known.interface );
      }
      std::ranges::sort( view_.interfaces, {}, &ShowView::Interface::name );
      std::ranges::sort( view_.attributes, {}, []( Report::Attribute const & a ) {
         return std::tie( a.interface, a.attributeType, a.key );
      } );
      return std::move( view_ );
   }

 private:
   struct Known {
      ShowView::Interface interface;
      std::map< Korv::U8, ShowView::Type > types;
   };

   // Null if nobody asks for it.
   Known * interfaceOf( Pelk::IntfId intfId ) {
      if ( !filter_.hasInterface( intfId.stringValue() ) ) {
         return nullptr;
      }
      auto const [place, isNew] = interfaces_.try_emplace( intfId );
      if ( isNew ) {
         auto const override = [&]( auto const & times ) {
            Korv::Seconds const * const own = times.find( intfId );
            return own ? *own : 0;
         };
         ShowView::Interface & interface = place->second.interface;
         interface.name = printable( intfId.stringValue() );
         Korv::Seconds const leave = override( config_.intfLeaveTime() );
         Korv::Seconds const leaveAll = override( config_.intfLeaveAllTime() );
         interface.ownLeaveTime = leave != 0;
         interface.ownLeaveAllTime = leaveAll != 0;
         interface.leaveTime = leave != 0 ? leave : config_.leaveTime();
         interface.leaveAllTime = leaveAll != 0 ? leaveAll : config_.leaveAllTime();
      }
      return &place->second;
   }

   ShowView::Type * typeOf( Pelk::IntfId intfId, Korv::U8 number ) {
      Known * const interface = interfaceOf( intfId );
      if ( !interface || !filter_.hasType( view_.application, number ) ) {
         return nullptr;
      }
      ShowView::Type & type = interface->types[number];
      type.attributeType = number;
      return &type;
   }

   void addAttributes( Pelk::IntfId intfId, Mrp::MrpIntfTypeApplicant const & published ) {
      ShowView::Type * const type = typeOf( intfId, published.attributeType() );
      if ( !type ) {
         return;
      }
      for ( auto member = published.mrpAttribute().walk(); member; ++member ) {
         Mrp::MrpAttrDatabase const & attribute = *member.value();
         auto const applicant = attribute.applicantState();
         auto const registrar = attribute.registrarState();
         type->declared += isDeclared( applicant ) ? 1 : 0;
         type->registered += registrar == Mrp::mrpIn ? 1 : 0;
         type->leaving += registrar == Mrp::mrpLv ? 1 : 0;
         if ( filter_.hasStates( applicant, registrar ) ) {
            view_.attributes.push_back( attributeOf(
               { intfId, published.attributeType(), member.key() }, attribute, true ) );
            auto & name = view_.attributes.back().interface;
            name = printable( name );
         }
      }
   }

   Mrp::MrpConfig const & config_;
   ShowFilter const & filter_;
   ShowView view_;
   std::map< Pelk::IntfId, Known > interfaces_;
};

} // namespace

std::vector< ShowView > showViews( MrpObserver::Mirror const & mirror, ShowFilter const & filter ) {
   std::map< Mrp::MrpApplication, ShowView > views;
   for ( auto published = mirror.status().application().walk(); published; ++published ) {
      Gathering gathering( mirror, filter );
      gathering.addApplication( *published.value() );
      views[published.key()] = gathering.result();
   }
   if ( views.empty() ) {
      views[Mrp::InvalidApplication] = Gathering( mirror, filter ).result();
   }
   std::vector< ShowView > all;
   for ( auto & [application, view] : views ) {
      all.push_back( std::move( view ) );
   }
   return all;
}

} // namespace Command
