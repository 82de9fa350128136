// The collections against those of the standard library, under random operations.
#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Queue.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>

namespace Korv {
namespace {

using TestSupport::Random;

// A map beside one of the standard library. A member's place in a walk is its key, or the turn in
// which it came.
template < class Map, bool ordered >
class MapAndModel {
 public:
   void run() {
      for ( U32 const keys : { 3u, 12u, 400u } ) { // from few members to several rows and tables
         for ( U32 round = 0; round < 100; ++round ) {
            // Now and then a run of neighbours, as frames bring them, or a hole of them.
            U64 const first = random.below( keys );
            bool const isRun = random.below( 3 ) == 0;
            for ( U32 i = 0; i < 150; ++i ) {
               ASSERT_NO_FATAL_FAILURE( change( isRun ? first + i : random.below( keys ) ) );
            }
            ASSERT_NO_FATAL_FAILURE( walk( keys ) );
         }
      }
   }

 private:
   void change( U64 key ) {
      bool const isMember = places.contains( key );
      if ( random.below( 2 ) ) {
         U32 const value = random.below( 1000 );
         ASSERT_EQ( map.insertOrAssign( key, value ), !isMember );
         if ( !isMember ) {
            places[key] = ordered ? key : turns++;
         }
         members[places[key]] = { key, value };
      } else {
         ASSERT_EQ( map.erase( key ), isMember );
         if ( isMember ) {
            members.erase( places[key] );
            places.erase( key );
         }
      }
      auto const * const found = map.find( key );
      ASSERT_EQ( found != nullptr, places.contains( key ) );
      ASSERT_TRUE( !found || *found == members[places[key]].second );
      ASSERT_EQ( map.size(), members.size() );
   }
   // Meets each member in its turn, whatever changes on the way.
   void walk( U32 keys ) {
      auto expected = members.begin();
      for ( auto walk = map.walk(); walk; ++walk ) {
         ASSERT_NE( expected, members.end() );
         ASSERT_EQ( std::pair( walk.key(), walk.value() ), expected->second );
         U64 const place = expected->first;
         for ( U32 n = random.below( 3 ); n > 0; --n ) {
            U64 const key = random.below( 4 ) ? random.below( keys ) : walk.key();
            ASSERT_NO_FATAL_FAILURE( change( key ) );
         }
         expected = members.upper_bound( place );
      }
      ASSERT_EQ( expected, members.end() );
   }

   Map map;
   std::map< U64, std::pair< U64, U32 > > members; // by their places
   std::map< U64, U64 > places;                    // by keys
   U64 turns = 0;
   Random random{ 7 };
};

TEST( Maps, agreeWithTheModel ) {
   MapAndModel< HashMap< U64, U32 >, false >().run();
   MapAndModel< OrderedMap< U64, U32 >, true >().run();
}

// What leaves a map may come back to it in its destructor.
TEST( Maps, letAValueLookAtTheMapThatItLeaves ) {
   struct Owned : PtrInterface {
      explicit Owned( std::function< void() > f ) : atEnd( std::move( f ) ) {}
      ~Owned() override { atEnd(); }
      std::function< void() > atEnd;
   };
   auto check = []( auto owners ) {
      int ended = 0;
      for ( U64 key = 1; key <= 3; ++key ) {
         owners.insertOrAssign( key, Ptr< Owned >( new Owned( [&, key] {
                                   ++ended;
                                   EXPECT_FALSE( owners.isMember( key ) );
                                   owners.erase( key + 1 );
                                } ) ) );
      }
      owners.erase( 1 );
      EXPECT_TRUE( owners.empty() );
      EXPECT_EQ( ended, 3 );
   };
   check( HashMap< U64, Ptr< Owned > >() );
   check( OrderedMap< U64, Ptr< Owned > >() );
}

TEST( Queue, namesItsEntriesByPosition ) {
   Queue< U32 > queue;
   EXPECT_EQ( queue.enq( 10 ), 0u );
   EXPECT_TRUE( queue.put( 7, 17 ) );
   EXPECT_FALSE( queue.put( 7, 17 ) );
   EXPECT_TRUE( queue.put( 3, 13 ) );
   EXPECT_EQ( queue.enq( 18 ), 8u );
   std::map< U32, U32 > walked;
   for ( auto walk = queue.walk(); walk; ++walk ) {
      walked.emplace( walk.position(), walk.value() );
      queue.del( walk.position() );
      queue.del( 7 );
   }
   EXPECT_EQ( walked, ( std::map< U32, U32 >{ { 0, 10 }, { 3, 13 }, { 8, 18 } } ) );
   EXPECT_EQ( queue.deq(), 0u ); // of nothing
   EXPECT_EQ( queue.enq( 19 ), 9u );

   // A walk ends at the last position that there can be, though one at 0 would come next.
   Queue< U32 > whole;
   whole.put( 0, 1 );
   whole.put( ~0u, 2 );
   U32 met = 0;
   for ( auto walk = whole.walk(); walk && met < 3; ++walk ) {
      ++met;
   }
   EXPECT_EQ( met, 2u );
}

// All slots, and a span of them. Those outside of it are 0.
struct Ring {
   U32 offset( U32 slot ) const { return ( slot + byteQueueSlots - head ) % byteQueueSlots; }
   bool put( U32 slot, U8 byte ) {
      head = count == 0 ? slot : head;
      U32 const i = offset( slot );
      if ( i > count && i + 1 < byteQueueSlots ) {
         return false;
      }
      head = i > count ? slot : head;
      count += i >= count ? 1 : 0;
      slots[slot] = byte;
      return true;
   }
   bool del( U32 slot ) {
      U32 const i = offset( slot );
      if ( i >= count ) {
         return false;
      }
      bool const atEnd = i == 0 || i + 1 == count;
      head = i == 0 ? ( head + 1 ) % byteQueueSlots : head;
      count -= atEnd ? 1 : 0;
      return std::exchange( slots[slot], U8{ 0 } ) != 0 || atEnd;
   }

   U32 head = 0, count = 0;
   std::array< U8, byteQueueSlots > slots{};
};

TEST( ByteQueue, agreesWithTheModel ) {
   ByteQueue< 8 > queue;
   Ring ring;
   Random random( 7 );
   for ( U32 step = 0; step < 200'000; ++step ) {
      U8 const byte = static_cast< U8 >( random.below( 4 ) );
      U32 const slot = random.below( byteQueueSlots );
      U32 const dice = random.below( 16 );
      if ( dice < 4 && ring.count == byteQueueSlots ) {
         ASSERT_THROW( queue.enq( byte ), RangeException );
      } else if ( dice < 4 ) {
         queue.enq( byte );
         ring.put( ( ring.head + ring.count ) % byteQueueSlots, byte );
      } else if ( dice < 8 ) {
         ASSERT_EQ( queue.deq(), ring.slots[ring.head] );
         ring.del( ring.head );
      } else if ( dice < 12 && ring.put( slot, byte ) ) {
         queue.put( slot, byte );
      } else if ( dice < 12 ) {
         ASSERT_THROW( queue.put( slot, byte ), RangeException );
      } else {
         ASSERT_EQ( queue.del( slot ), ring.del( slot ) );
      }
      ASSERT_EQ( queue.head(), ring.head );
      ASSERT_EQ( queue.count(), ring.count );
      std::array< U8, byteQueueSlots > copy;
      queue.copyOut( copy.data(), copy.size() );
      ASSERT_EQ( copy, ring.slots );
      U32 const front = 1 + random.below( 40 );
      ASSERT_TRUE( queue.sameAs( copy.data(), front ) );
      copy[slot % front] ^= 1;
      ASSERT_FALSE( queue.sameAs( copy.data(), front ) );
   }
}

} // namespace
} // namespace Korv
