// Reads what a RingFile holds, also while it is being written, and whatever bytes it is given.
#pragma once

#include "mrp/platform/sornlog/RingLayout.h"
#include "mrp/platform/sornlog/Sornlog.h"

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace Sornlog {

// The bytes are no ring file that can be read; says why.
class RingError : public std::runtime_error {
 public:
   using runtime_error::runtime_error;
};

struct RingSite {
   Korv::U8 level;
   std::string codes;
   std::string message;
};

struct RingArgument {
   char code;
   Korv::S32 number = 0; // i, c and b
   std::string text;     // p
   bool isCut = false;   // p: the string was longer
};

struct RingRecord {
   Korv::U64 sequence;
   Korv::U64 time; // nanoseconds since 1970
   Korv::U16 site; // of RingContents::sites
   std::vector< RingArgument > arguments;
};

// Every count is bounded by the bytes that were read.
struct RingContents {
   Korv::U32 process = 0;
   Korv::U64 started = 0;
   Korv::U64 lost = 0;       // records that found no place for their message
   Korv::U64 unfinished = 0; // records that were being written
   Korv::U64 damaged = 0;    // records and sites that no writer has made
   std::vector< RingSite > sites;
   std::vector< RingRecord > records; // in the order in which they were written
};

// They begin as a ring file does.
bool isRing( std::span< Korv::U8 const > bytes );

// Throws RingError. Bytes that are missing at the end are records that are not there.
RingContents readRing( std::span< Korv::U8 const > bytes );

// The record's message with its arguments in place. What does not print in it is escaped, so that a
// file cannot play tricks on a terminal.
std::string text( RingContents const & ring, RingRecord const & record );

} // namespace Sornlog
