// What the fuzzers have found, each as a case of its own.
#include "mrp/platform/bridging/VlanId.h"
#include "mrp/platform/korv/RangeException.h"

#include <gtest/gtest.h>

namespace {

TEST( FuzzFindings, aVlanIdReadFromTextKeepsItsBounds ) {
   EXPECT_EQ( Korv::fromText< Bridging::VlanId >( "4094" ), Bridging::VlanId( 4094 ) );
   EXPECT_EQ( Korv::fromText< Bridging::VlanId >( "0" ), Bridging::VlanId() );
   EXPECT_THROW( Korv::fromText< Bridging::VlanId >( "4188" ), Korv::RangeException );
}

} // namespace
