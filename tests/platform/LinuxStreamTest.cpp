#include "mrp/platform/linux/AttrLogServer.h"
#include "mrp/platform/linux/RealActivity.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace Linux {
namespace {

TEST( LinuxStream, takesItsPathAlongUnlessAnotherHasItByNow ) {
   std::filesystem::path const path =
      testing::TempDir() + "mrp-stream-" + std::to_string( ::getpid() );
   RealActivity activity;
   auto const serve = [&] {
      return std::make_unique< AttrLogServer >(
         activity, StreamAddress::fromText( "unix:" + path.string() ), nullptr );
   };
   auto first = serve();
   std::filesystem::remove( path );
   auto second = serve();
   first.reset();
   EXPECT_TRUE( std::filesystem::exists( path ) );
   second.reset();
   EXPECT_FALSE( std::filesystem::exists( path ) );
}

} // namespace
} // namespace Linux
