// What a frame says, read by a strict reader of its own: it goes by the rules of the wire format
// alone, and whatever breaks one of them is a fault with words.
#pragma once

#include "tests/support/Values.h"

namespace TestSupport {

// One value of a vector, the FirstValue stepped on.
struct Declared {
   U64 key = 0;
   Bytes value; // as a FirstValue would hold it
   Event event = New;
   Declaration declaration = Ignore; // a listener's
};

struct Decoded {
   U64 from = 0;
   std::vector< Declared > declared; // all values of all vectors, in the order of the frame
   std::string said;                 // the text without the faults
   std::vector< std::string > faults;
   bool typesAscend = true; // a frame whose types do not is sound, too

   // A message in braces, its vectors apart by semicolons; values apart by commas, with the
   // LeaveAll mark ahead of them:
   //
   //    vlan{10 JoinIn, 11 JoinIn; 20 Mt} vlan{LeaveAll}
   //    talker{LeaveAll 0x100 New} listener{0x100 JoinMt Ready} domain{6 JoinIn}
   //
   // and faults at the end, each behind an exclamation mark.
   std::string text() const;
};

// The frame's type tells the protocol; a frame of another type has that as its one fault.
Decoded decode( Bytes const & frame );

// decode( frame ).text()
std::string says( Bytes const & frame );

} // namespace TestSupport
