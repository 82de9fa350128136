// The bytes of a ring file. Everything in it is a multiple of 128 bytes, of fixed widths, in the
// byte order of the machine that wrote it; docs/observability.md tells it for those who write a
// reader.
//
//   header   sites: 128 x Site   rings: of each level from 0 to 9, recordsPerRing x Record
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>

namespace Sornlog::Layout {

using Korv::U16;
using Korv::U32;
using Korv::U64;
using Korv::U8;

inline constexpr char magic[8] = { 'S', 'O', 'R', 'N', 'L', 'O', 'G', '\n' };
inline constexpr U32 byteOrder = 0x01020304;
inline constexpr U32 version = 1;
inline constexpr U32 siteSlots = 128;
inline constexpr U32 rings = 10;
inline constexpr U32 mostRecordsPerRing = 1u << 20;

struct Header {
   char magic[8];
   U32 byteOrder;
   U32 version;
   U32 headerBytes;
   U32 siteBytes;
   U32 siteSlots;
   U32 recordBytes;
   U32 rings;
   U32 recordsPerRing;
   U32 sites; // registered so far; written behind the site that it counts
   U32 process;
   U64 started;     // nanoseconds since 1970, as all times here
   U64 lostRecords; // of sites for which there was no slot left
   U8 reserved[64];
};
static_assert( sizeof( Header ) == 128 );

// A message, registered at its first record. Its number is its place, from 0.
struct Site {
   U8 level;
   U8 codeCount;
   U16 messageBytes;
   char codes[12];
   char message[112];
};
static_assert( sizeof( Site ) == 128 );

// A record is whole if `sequence` is not 0 and `echo` is the low half of it. A writer sets
// `sequence` to 0, writes `echo` and the rest, and then `sequence`: it can be stopped anywhere.
struct Record {
   U64 sequence; // of the file, from 1: the order in which records of all levels were written
   U64 time;
   U16 site;
   U16 argumentBytes;
   // Each by its code: i takes 4 bytes, c and b take 1, p takes a byte with the length (its top bit
   // says that the string was longer) and as many as that.
   U8 arguments[104];
   U32 echo;
};
static_assert( sizeof( Record ) == 128 );

inline constexpr U8 longestText = 32; // of a p
inline constexpr U8 wasLonger = 0x80;

inline constexpr std::size_t sitesAt = sizeof( Header );
inline constexpr std::size_t recordsAt = sitesAt + siteSlots * sizeof( Site );
constexpr std::size_t fileBytes( U32 recordsPerRing ) {
   return recordsAt + std::size_t{ rings } * recordsPerRing * sizeof( Record );
}

// The header of an empty file, but for the process and the time.
constexpr Header newHeader( U32 recordsPerRing ) {
   Header header{};
   for ( std::size_t i = 0; i < sizeof magic; ++i ) {
      header.magic[i] = magic[i];
   }
   header.byteOrder = byteOrder;
   header.version = version;
   header.headerBytes = sizeof( Header );
   header.siteBytes = sizeof( Site );
   header.siteSlots = siteSlots;
   header.recordBytes = sizeof( Record );
   header.rings = rings;
   header.recordsPerRing = recordsPerRing;
   return header;
}

} // namespace Sornlog::Layout
