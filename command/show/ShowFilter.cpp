#include "command/show/ShowFilter.h"

#include "mrp/frame/AttributeKinds.h"

#include "command/CommandError.h"
#include "command/report/Words.h"

#include <cctype>

namespace Command {

namespace {

std::string plain( std::string const & text ) {
   std::string letters;
   for ( char const c : text ) {
      if ( c != '-' && c != '_' && c != ' ' ) {
         letters += static_cast< char >( std::tolower( static_cast< unsigned char >( c ) ) );
      }
   }
   return letters;
}

template < class F >
void forEachType( F && f ) {
   std::apply(
      [&]( auto... kind ) { ( f( decltype( kind )::application, decltype( kind )::type ), ... ); },
      Mrp::AttributeKinds{} );
}

template < class State, class F >
void forEachState( State last, F && f ) {
   for ( Korv::U32 state = 0; state <= last; ++state ) {
      f( static_cast< State >( state ) );
   }
}

template < class T >
bool hasAny( std::set< T > const & wanted, T const & one ) {
   return wanted.empty() || wanted.contains( one );
}

} // namespace

void ShowFilter::typeAdd( std::string const & text ) {
   bool isFound = false;
   std::string all;
   forEachType( [&]( Mrp::MrpApplication application, Korv::U8 type ) {
      std::string const word = typeWord( application, type );
      std::string const number = std::to_string( type );
      all += ( all.empty() ? "" : ", " ) + word + " (" + number + ")";
      if ( plain( text ) == plain( word ) || text == number ) {
         types.insert( { application, type } );
         isFound = true;
      }
   } );
   if ( !isFound ) {
      throw CommandError( "'" + text + "' is no attribute type: " + all );
   }
}

void ShowFilter::stateAdd( std::string const & text ) {
   bool isFound = false;
   std::string all;
   auto const look = [&]( auto & states ) {
      return [&]( auto state ) {
         std::string const word = stateWord( state );
         all += ( all.empty() ? "" : ", " ) + word;
         if ( plain( text ) == plain( word ) ) {
            states.insert( state );
            isFound = true;
         }
      };
   };
   forEachState( Mrp::mrpMt, look( registrarStates ) );
   all += " of the registrar";
   forEachState( Mrp::mrpLeavingObserver, look( applicantStates ) );
   if ( !isFound ) {
      throw CommandError( "'" + text + "' is no state: " + all + " of the applicant" );
   }
}

bool ShowFilter::hasInterface( std::string const & name ) const {
   return hasAny( interfaces, name );
}

bool ShowFilter::hasType( Mrp::MrpApplication application, Korv::U8 attributeType ) const {
   return hasAny( types, { application, attributeType } );
}

bool ShowFilter::hasStates( Mrp::MrpApplicantState applicant,
                            Mrp::MrpRegistrarState registrar ) const {
   return hasAny( applicantStates, applicant ) && hasAny( registrarStates, registrar );
}

} // namespace Command
