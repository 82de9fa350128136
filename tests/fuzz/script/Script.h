// An input of the frame fuzzers is a script: steps on a live participant with three interfaces.
// Every string of bytes is a script, and bytes that are missing count as 0.
//
// The first byte has flags: 1 starts in standby, 2 leaves the interfaces' status entries out. Then
// each step is a byte, the interface in its upper half and the action in its lower half, and what
// the action takes:
//
//    wait           tenths of half a second
//    mrpdu          length (2 bytes), bytes       a frame with the right header in front of them
//    frame          length (2 bytes), bytes       the frame
//    message        type, flags, key (2), count, an event each; a well-formed frame of one vector
//    declare        type, event, key (2), interfaces queued
//    cleanUp        the interface; cleanUpOne one attribute, type and key (2)
//    disable, enable, unplug, plugIn
//    configure      which, value
//    behave         how the application takes what it is told: in the lower 3 bits what it does,
//                   in the others whether it refuses, and what else it takes for a reason to do it
//    leaveAll       transmitAllLeaveAll
//    recycled       the next frame is walked only
//    endStandby
//
// `Step` and the numbers are the corpus' format: add at the end.
#pragma once

#include "tests/support/Participant.h"

#include <cstddef>
#include <cstdint>

namespace Fuzz {

enum class Step : std::uint8_t {
   wait,
   mrpdu,
   frame,
   message,
   declare,
   cleanUp,
   cleanUpOne,
   disable,
   enable,
   unplug,
   plugIn,
   configure,
   behave,
   leaveAll,
   recycled,
   endStandby
};

enum Flags : std::uint8_t { inStandby = 1, noStatusEntries = 2 };

// Aborts when something does not hold that must:
//  - after each step: nothing of a frame is left between parser and machines, no queue has entries
//  - of each frame sent: it is within the MTU, and an MSRP frame says something well-formed
//  - at the end, all interfaces off and some seconds on: nothing is pending or indexed, and no
//    machine and no open frame is left
void runScript( Mrp::MrpApplication application, std::uint8_t const * data, std::size_t size );

} // namespace Fuzz
