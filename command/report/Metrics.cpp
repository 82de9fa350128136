#include "command/report/Metrics.h"

#include "command/report/Words.h"

#include <array>
#include <charconv>
#include <initializer_list>
#include <vector>

namespace Command {

namespace {

struct Counter {
   char const * name;
   char const * help;
   U64 ( Mrp::MrpCounters::*value )() const;
};

using C = Mrp::MrpCounters;
constexpr Counter counterTable[] = {
   { "mrp_frames_received_total", "Frames taken in, whatever became of them.",
     &C::numOfPktsProcessed },
   { "mrp_frames_transmitted_total", "Frames handed to an interface.", &C::numOfPktsTransmitted },
   { "mrp_join_indications_total", "Joins indicated, those of known attributes included.",
     &C::numOfJoinIndications },
   { "mrp_leave_indications_total", "Leaves indicated.", &C::numOfLeaveIndications },
   { "mrp_parse_failures_total", "Failures of the parser; a malformed frame may count several.",
     &C::numOfMalformedPkts },
   { "mrp_incorrect_versions_total", "MRPDUs of a ProtocolVersion other than 0.",
     &C::numOfIncorrectPduVersion },
   { "mrp_incorrect_destinations_total", "Frames to another address than the application's.",
     &C::numOfIncorrectDmac },
   { "mrp_incorrect_ethertypes_total", "Frames of another EtherType than the application's.",
     &C::numOfIncorrectEtype },
   { "mrp_unknown_attribute_types_total", "Vectors of a type that the application does not have.",
     &C::numOfUnknownAttributeType },
   { "mrp_unknown_applications_total", "Vectors at a participant of an unknown application.",
     &C::numOfUnknownApplication },
};

struct Label {
   char const * name;
   std::string value;
};

std::string escaped( std::string const & text ) {
   std::string out;
   for ( char const c : printable( text ) ) {
      if ( c == '\\' || c == '"' ) {
         out += '\\';
      }
      out += c;
   }
   return out;
}

// The shortest text that reads back as the number.
template < class Number >
std::string numberText( Number number ) {
   std::array< char, 32 > digits;
   auto const end = std::to_chars( digits.data(), digits.data() + digits.size(), number ).ptr;
   return std::string( digits.data(), end );
}

class Exposition {
 public:
   explicit Exposition( Mrp::MrpApplication application )
      : application_( application == Mrp::MVRP ? "mvrp" : "msrp" ) {}

   // All samples of a name follow on it.
   void nameIs( char const * name, char const * type, char const * help ) {
      name_ = name;
      text_ += "# HELP " + name_ + ' ' + help + "\n# TYPE " + name_ + ' ' + type + '\n';
   }
   template < class Number >
   void add( std::initializer_list< Label > labels, Number number ) {
      text_ += name_ + "{application=\"" + application_ + '"';
      for ( Label const & label : labels ) {
         text_ += std::string( "," ) + label.name + "=\"" + escaped( label.value ) + '"';
      }
      text_ += "} " + numberText( number ) + '\n';
   }
   std::string const & text() const { return text_; }

 private:
   std::string application_;
   std::string name_;
   std::string text_;
};

// How many attributes of one interface and type are in each state.
struct Population {
   std::string interface;
   std::string type;
   std::array< U64, Mrp::mrpMt + 1 > registrars{};
   std::array< U64, Mrp::mrpLeavingObserver + 1 > applicants{};
};

std::vector< Population > populationsOf( Mrp::MrpApplication application,
                                         Mrp::MrpApplicationDatabase const & database ) {
   std::vector< Population > populations;
   for ( auto intf = database.attrDatabase().walk(); intf; ++intf ) {
      for ( auto type = intf.value()->intfTypeApplicant().walk(); type; ++type ) {
         Population population{ intf.key().stringValue(), typeWord( application, type.key() ) };
         for ( auto each = type.value()->mrpAttribute().walk(); each; ++each ) {
            ++population.registrars[each.value()->registrarState()];
            ++population.applicants[each.value()->applicantState()];
         }
         populations.push_back( std::move( population ) );
      }
   }
   return populations;
}

template < class State, std::size_t n >
void addStates( Exposition & to, Population const & population,
                std::array< U64, n > const & counts ) {
   for ( std::size_t i = 0; i < n; ++i ) {
      to.add( { { "interface", population.interface },
                { "type", population.type },
                { "state", stateWord( static_cast< State >( i ) ) } },
              counts[i] );
   }
}

void addDatabase( Exposition & to, Mrp::MrpApplication application,
                  Mrp::MrpApplicationDatabase const & database ) {
   auto const populations = populationsOf( application, database );
   to.nameIs( "mrp_registrar_attributes", "gauge", "Attributes whose registrar is in the state." );
   for ( Population const & population : populations ) {
      addStates< Mrp::MrpRegistrarState >( to, population, population.registrars );
   }
   to.nameIs( "mrp_applicant_attributes", "gauge", "Attributes whose applicant is in the state." );
   for ( Population const & population : populations ) {
      addStates< Mrp::MrpApplicantState >( to, population, population.applicants );
   }
   to.nameIs( "mrp_leave_all_period_seconds", "gauge",
              "The time between LeaveAlls that was drawn last." );
   for ( auto period = database.leaveAllTime().walk(); period; ++period ) {
      to.add( { { "interface", period.key().intfId().stringValue() },
                { "type", typeWord( application, period.key().attributeType() ) } },
              period.value() );
   }
}

void addTime( Exposition & to, char const * name, char const * help, Korv::Seconds time ) {
   to.nameIs( name, "gauge", help );
   to.add( {}, time );
}

// Under names of their own: a sum over one name is to mean something.
void addTimes( Exposition & to, char const * name, char const * help,
               Mrp::MrpConfig::IntfTimes const & ofInterfaces ) {
   to.nameIs( name, "gauge", help );
   for ( auto own = ofInterfaces.walk(); own; ++own ) {
      to.add( { { "interface", own.key().stringValue() } }, own.value() );
   }
}

} // namespace

std::string metricsText( Mrp::MrpApplication application, Mrp::MrpStatus const & status,
                         Mrp::MrpCounters const & counters, Mrp::MrpConfig const & config ) {
   Exposition to( application );
   to.nameIs( "mrp_build_info", "gauge", "1; the labels say what is running." );
   to.add( { { "version", MRP_VERSION } }, 1 );
   for ( Counter const & counter : counterTable ) {
      to.nameIs( counter.name, "counter", counter.help );
      to.add( {}, ( counters.*counter.value )() );
   }
   if ( auto const * const database = status.application( application ) ) {
      addDatabase( to, application, *database );
   }
   addTime( to, "mrp_leave_time_seconds", "The leave time.", config.leaveTime() );
   addTime( to, "mrp_leave_all_time_seconds", "The LeaveAll time.", config.leaveAllTime() );
   addTimes( to, "mrp_interface_leave_time_seconds",
             "The leave time where an interface has its own.", config.intfLeaveTime() );
   addTimes( to, "mrp_interface_leave_all_time_seconds",
             "The LeaveAll time where an interface has its own.", config.intfLeaveAllTime() );
   return to.text();
}

} // namespace Command
