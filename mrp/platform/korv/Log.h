// Log handles: what an operator sees.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <string>

namespace Korv {

enum RecommendedAction : U8 { NoActionRequired };

// One kind of message, made when the library loads. The two rate arguments and the last one are
// kept as they are given.
class LogHandle {
 public:
   constexpr LogHandle( char const * name, U32 severity, char const * format,
                        char const * explanation, RecommendedAction action, double rateMin,
                        double rateMax, U32 last )
      : name_( name ), format_( format ), explanation_( explanation ), rateMin_( rateMin ),
        rateMax_( rateMax ), severity_( severity ), last_( last ), action_( action ) {}

   char const * name() const { return name_; }
   char const * format() const { return format_; }
   char const * explanation() const { return explanation_; }
   U32 severity() const { return severity_; }
   RecommendedAction recommendedAction() const { return action_; }
   double rateMin() const { return rateMin_; }
   double rateMax() const { return rateMax_; }
   U32 last() const { return last_; }

   // True if somebody would see the message: formatting is for them alone.
   bool okToLog() const;
   void log( std::string const & text ) const;

 private:
   char const * name_;
   char const * format_;
   char const * explanation_;
   double rateMin_;
   double rateMax_;
   U32 severity_;
   U32 last_;
   RecommendedAction action_;
};

// Where log messages go; nowhere unless set.
using LogSink = void ( * )( LogHandle const & handle, std::string const & text );
void logSinkIs( LogSink sink );

} // namespace Korv
