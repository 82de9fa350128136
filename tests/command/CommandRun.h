// Runs `mrp` as a user does, and makes the files that it reads.
#pragma once

#include "command/replay/Captures.h"
#include "tests/support/Mrpdu.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace CommandTest {

using TestSupport::Bytes;

using Lines = std::vector< std::string >;

struct Outcome {
   int status; // 128 and more: it did not exit by itself
   std::string out;
   std::string err;

   nlohmann::json json() const { return nlohmann::json::parse( out ); }
};

// Of a file. Tests run in the root of the repository.
std::string contents( std::string const & path );

// `mrp` with these words.
Outcome mrp( std::string const & words );

// It ended with status 2, and all it said was one line of error with these words.
void expectRefused( Outcome const & outcome, std::string const & words );

// A variable of the environment, for the lifetime of the object.
class Variable {
 public:
   Variable( char const * name, char const * value ) : name_( name ) { ::setenv( name, value, 1 ); }
   Variable( Variable const & ) = delete;
   Variable & operator=( Variable const & ) = delete;
   ~Variable() { ::unsetenv( name_ ); }

 private:
   char const * name_;
};
constexpr char const * noRandomization = "DISABLE_LEAVE_ALL_RANDOMIZATION";

constexpr std::int64_t start = 1'700'000'000'123'456'000;
constexpr std::int64_t ms = 1'000'000;

// A directory that goes with the test.
class CommandTest : public ::testing::Test {
 protected:
   CommandTest();
   ~CommandTest() override;

   std::string path( std::string const & name ) const { return ( directory_ / name ).string(); }
   // These write the file, and give its path.
   std::string file( std::string const & name, std::string const & text ) const;
   std::string capture( std::string const & name,
                        std::vector< Command::CapturedFrame > const & frames ) const;

 private:
   std::filesystem::path directory_;
};

} // namespace CommandTest
