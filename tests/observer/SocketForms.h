// A test of each form of socket, which leaves nothing behind.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

namespace TestSupport {

class SocketForms : public testing::TestWithParam< char const * > {
 protected:
   std::string address() const {
      return GetParam() == std::string( "unix" ) ? "unix:" + path_ : "tcp:0";
   }
   ~SocketForms() override { std::filesystem::remove( path_ ); }

 private:
   std::string path_ = testing::TempDir() + "mrp-mirror-" + std::to_string( ::getpid() );
};

// For INSTANTIATE_TEST_SUITE_P.
inline auto socketForms() { return testing::Values( "unix", "tcp" ); }
inline std::string socketFormName( testing::TestParamInfo< char const * > const & of ) {
   return of.param;
}

} // namespace TestSupport
