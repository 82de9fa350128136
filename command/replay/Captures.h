// Captures of frames in files: pcap and pcapng read, pcap written, of Ethernet.
#pragma once

#include "mrp/platform/korv/Types.h"

#include "command/Nanoseconds.h"

#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace Command {

struct CapturedFrame {
   Nanoseconds time = 0;
   std::vector< Korv::U8 > bytes;
};

struct Capture {
   std::vector< CapturedFrame > frames; // in the order of the file
   std::vector< std::string > warnings; // a line each: of what was left out, and why
};

// Times are exact to what the file holds. A file that is cut or damaged after its head gives the
// frames before that place, and a warning. Throws CommandError for one that is missing, no capture
// or not of Ethernet.
Capture readCapture( std::string const & path );
// The same from a stream that is open and is closed here; `name` is for errors and warnings.
Capture readCapture( std::FILE * stream, std::string const & name );

// Times are written in microseconds if that holds them all, else in nanoseconds. Throws
// CommandError if the file cannot be written.
void writeCapture( std::string const & path, std::span< CapturedFrame const > frames );

} // namespace Command
