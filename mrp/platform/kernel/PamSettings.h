// What a Pam is opened with.
#pragma once

#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/platform/pelk/SockFilterProgram.h"

namespace KernelNetInfo {

struct PamSettings {
   Pelk::SockFilterProgram filterProgram; // frames that it holds back are never seen
   Pelk::EthAddr destination;             // the group address to take part in
   bool perIntfSocket = false;            // kept as it is given: each interface has a socket here
   Korv::U32 txRetries = 0;               // for a frame that the device's queue has no room for
   Korv::U32 rxQueueFrames = 0;           // frames that may wait unread; more are lost
};

} // namespace KernelNetInfo
