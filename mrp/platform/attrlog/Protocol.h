// The numbers of the mirror stream. docs/mirror-stream.md tells what they mean, for whoever writes
// an observer in another language.
#pragma once

#include "mrp/platform/korv/Types.h"

#include <cstddef>

namespace Korv::NboAttrLog {

// What a connection begins with: these eight characters, then the version's two numbers. A reader
// refuses another major number, and passes over types and attributes that it does not know.
inline constexpr char magic[] = "MrpAttrL";
inline constexpr std::size_t magicBytes = 8;
inline constexpr U16 majorVersion = 1;
inline constexpr U16 minorVersion = 0;
inline constexpr std::size_t greetingBytes = magicBytes + 4;

// A message: its length, then the header (entity, attribute, flags), then tokens and payload.
inline constexpr std::size_t lengthBytes = 4;
inline constexpr std::size_t headerBytes = 8 + 2 + 1;
inline constexpr std::size_t maxMessageBytes = 256 * 1024;

// Flags.
inline constexpr U8 plain = 0;
inline constexpr U8 transaction = 1; // the payload is one marker and nothing else

// Markers around the whole of a collection.
enum class Marker : U8 { begin = 0, abort = 1, end = 2 };

// Tokens around the payload of a plain message.
inline constexpr U8 tokenBegin = 1;
inline constexpr U8 tokenEnd = 3;

// The record by which an entity is made known, and its sections.
inline constexpr S16 orphanAttr = 136;
inline constexpr U8 sectionTypeName = 1;
inline constexpr U8 sectionKey = 3;
inline constexpr U8 sectionIdentifier = 4;

// The first number that an entity adds to the generic ones.
inline constexpr U16 firstOwnAttr = 258;

} // namespace Korv::NboAttrLog
