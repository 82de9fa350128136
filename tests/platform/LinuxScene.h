// Real interfaces for tests: a network namespace of the test's own with a veth pair, "va" and "vb".
#pragma once

#include "mrp/platform/kernel/PamSettings.h"
#include "mrp/platform/linux/Descriptor.h"
#include "mrp/platform/linux/RealActivity.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace Linux {

using Frame = std::vector< Korv::U8 >;

// A frame of MVRP with nothing in it, of 60 bytes, numbered at its end. The tag, if there is one,
// stands behind the addresses.
Frame numberedFrame( Korv::U8 number = 0, Frame const & tag = {} );
inline std::size_t const numberAt = 59; // of an untagged one

// The filter of MVRP and its group address.
KernelNetInfo::PamSettings mvrpSettings();

// The wire's other end: a plain packet socket, which sends and hears whatever there is.
class Wire {
 public:
   explicit Wire( std::string const & interface );

   void send( Frame const & frame ) const;
   // The frames of MVRP that have arrived by now, tags left away.
   std::vector< Frame > heard() const;

 private:
   Descriptor socket_;
};

// Skips where the machine does not allow namespaces; root or user namespaces will do.
class Scene : public testing::Test {
 protected:
   void SetUp() override;

   // A command of iproute2, or another of the shell's; it has to succeed.
   static void run( std::string const & command );
   // Runs the loop until the condition holds; false if it does not in ten seconds of turns.
   bool runUntil( std::function< bool() > const & holds );

   RealActivity activity;
};

} // namespace Linux
