// Log handles: what an operator sees.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <string>

namespace Korv {

enum RecommendedAction : U8 { NoActionRequired };

// How many messages of one handle go out: so many at once, and then so many a second. The time is
// that of the process's clock, so that a run on a virtual clock logs the same each time.
struct LogRate {
   double burst = 50;
   double perSecond = 10;
};
void logRateIs( LogRate rate );

// One kind of message, made when the library loads. The two rate arguments and the last one are
// kept as they are given; what limits a handle is the LogRate.
class LogHandle {
 public:
   constexpr LogHandle( char const * name, U32 severity, char const * format,
                        char const * explanation, RecommendedAction action, double rateMin,
                        double rateMax, U32 last )
      : name_( name ), format_( format ), explanation_( explanation ), rateMin_( rateMin ),
        rateMax_( rateMax ), severity_( severity ), last_( last ), action_( action ) {}
   LogHandle( LogHandle const & ) = delete;
   LogHandle & operator=( LogHandle const & ) = delete;

   char const * name() const { return name_; }
   char const * format() const { return format_; }
   char const * explanation() const { return explanation_; }
   U32 severity() const { return severity_; }
   RecommendedAction recommendedAction() const { return action_; }
   double rateMin() const { return rateMin_; }
   double rateMax() const { return rateMax_; }
   U32 last() const { return last_; }

   // For whoever has a message: false if nobody would see it, or the handle's rate is used up.
   // Formatting is for a true alone. A true is a message spent.
   bool okToLog();
   void log( std::string const & text );

   // For sinks: messages that the rate has held back since the one before.
   U64 suppressed() const { return suppressed_; }

 private:
   bool isWithinRate();

   char const * name_;
   char const * format_;
   char const * explanation_;
   double rateMin_;
   double rateMax_;
   U32 severity_;
   U32 last_;
   RecommendedAction action_;
   // A bucket that leaks: each message goes in, and the burst is what it holds.
   double level_ = 0;
   Seconds levelAt_ = 0;
   U64 suppressed_ = 0;
};

// Where log messages go; nowhere unless set. A callback of the agent's, or one of LogSinks.h.
using LogSink = void ( * )( LogHandle const & handle, std::string const & text );
void logSinkIs( LogSink sink );

} // namespace Korv
