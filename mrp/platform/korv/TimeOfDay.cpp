#include "mrp/platform/korv/TimeOfDay.h"

#include "mrp/platform/korv/Format.h"

#include <chrono>
#include <ctime>

namespace Korv {

U64 timeOfDay() {
   auto const time = std::chrono::system_clock::now().time_since_epoch();
   return static_cast< U64 >( std::chrono::nanoseconds( time ).count() );
}

std::string timeOfDayText( U64 nanoseconds ) {
   constexpr U64 second = 1'000'000'000;
   auto const seconds = static_cast< std::time_t >( nanoseconds / second );
   std::tm parts{};
   localtime_r( &seconds, &parts );
   return format( "%04d-%02d-%02d %02d:%02d:%02d.%03u", parts.tm_year + 1900, parts.tm_mon + 1,
                  parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast< unsigned >( nanoseconds % second / 1'000'000 ) );
}

} // namespace Korv
