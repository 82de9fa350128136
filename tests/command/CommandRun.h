// Runs `mrp` as a user does, and makes the files that it reads.
#pragma once

#include "command/replay/Captures.h"
#include "tests/support/Mrpdu.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace CommandTest {

using TestSupport::Bytes;

struct Outcome {
   int status; // -1: it did not exit by itself
   std::string out;
   std::string err;

   nlohmann::json json() const { return nlohmann::json::parse( out ); }
};

// In a process of its own: rand() starts anew, and the filter is that of this run's application.
Outcome mrp( std::vector< std::string > const & arguments );

// It ended with status 2, and all it said was one line of error with these words.
void expectRefused( Outcome const & outcome, std::string const & words );

// A time in nanoseconds and a frame.
struct Stamped {
   std::int64_t time;
   Bytes frame;
};
constexpr std::int64_t start = 1'700'000'000'123'456'000;
constexpr std::int64_t ms = 1'000'000;

// The bytes of a file, put together here.
Bytes pcap( std::vector< Stamped > const & frames, std::uint32_t linkType = 1 );

// A directory that goes with the test.
class CommandTest : public ::testing::Test {
 protected:
   CommandTest();
   ~CommandTest() override;

   std::string path( std::string const & name ) const { return ( directory_ / name ).string(); }
   // Writes the file, and gives its path.
   std::string file( std::string const & name, Bytes const & bytes ) const;

 private:
   std::filesystem::path directory_;
};

} // namespace CommandTest
