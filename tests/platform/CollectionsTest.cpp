// The collections against those of the standard library, under random operations.
#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Queue.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <random>
#include <string>

namespace Korv {
namespace {

class Random {
 public:
   U32 below( U32 n ) { return static_cast< U32 >( engine_() % n ); }

 private:
   std::mt19937 engine_{ 7 };
};

template < class M, bool ordered >
struct Kind {
   using Map = M;
   static constexpr bool isOrdered = ordered;
};

template < class K >
class MapTest : public testing::Test {
 protected:
   struct Member {
      U64 key;
      U32 value;
   };

   void change( U64 key ) {
      bool const isMember = places.contains( key );
      if ( random.below( 2 ) ) {
         U32 const value = random.below( 1000 );
         ASSERT_EQ( map.insertOrAssign( key, value ), !isMember );
         if ( !isMember ) {
            places[key] = K::isOrdered ? key : turns++;
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
      ASSERT_TRUE( !found || *found == members[places[key]].value );
      ASSERT_EQ( map.size(), members.size() );
   }
   // A walk that meets each member in its turn, whatever it changes on its way.
   void walk( U32 keys ) {
      auto expected = members.begin();
      for ( auto walk = map.walk(); walk; ++walk ) {
         ASSERT_NE( expected, members.end() );
         ASSERT_EQ( walk.key(), expected->second.key );
         ASSERT_EQ( walk.value(), expected->second.value );
         U64 const place = expected->first;
         for ( U32 n = random.below( 3 ); n > 0; --n ) {
            U64 const key = random.below( 4 ) ? random.below( keys ) : walk.key();
            ASSERT_NO_FATAL_FAILURE( change( key ) );
         }
         expected = members.upper_bound( place );
      }
      ASSERT_EQ( expected, members.end() );
   }

   typename K::Map map;
   // The model. A member's place in a walk is its key, or the turn in which it came.
   std::map< U64, Member > members;
   std::map< U64, U64 > places;
   U64 turns = 0;
   Random random;
};
using Maps =
   testing::Types< Kind< HashMap< U64, U32 >, false >, Kind< OrderedMap< U64, U32 >, true > >;
TYPED_TEST_SUITE( MapTest, Maps );

TYPED_TEST( MapTest, agreesWithTheModel ) {
   for ( U32 const keys : { 3u, 12u, 400u } ) { // from few members to several rows and tables
      for ( U32 round = 0; round < 100; ++round ) {
         // Now and then a run of neighbours, as frames bring them, or a hole of them.
         U64 const first = this->random.below( keys );
         bool const run = this->random.below( 3 ) == 0;
         for ( U32 i = 0; i < 150; ++i ) {
            ASSERT_NO_FATAL_FAILURE( this->change( run ? first + i : this->random.below( keys ) ) );
         }
         ASSERT_NO_FATAL_FAILURE( this->walk( keys ) );
      }
   }
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

TEST( Queue, agreesWithAMapOfPositions ) {
   Queue< U32 > queue;
   std::map< U32, U32 > model;
   U32 next = 0;
   Random random;
   for ( U32 i = 0; i < 100'000; ++i ) {
      U32 const value = random.below( 1000 );
      U32 const position = next < 30 ? random.below( 30 ) : next - random.below( 30 );
      U32 const dice = random.below( 8 );
      if ( dice < 4 ) {
         next = std::max( next, model.empty() ? 0 : model.rbegin()->first + 1 );
         ASSERT_EQ( queue.enq( value ), next );
         model[next++] = value;
      } else if ( dice < 6 ) {
         ASSERT_EQ( queue.deq(), model.empty() ? 0 : model.begin()->second );
         if ( !model.empty() ) {
            model.erase( model.begin() );
         }
      } else if ( dice == 6 ) {
         ASSERT_EQ( queue.put( position, value ),
                    !model.contains( position ) || model[position] != value );
         model[position] = value;
      } else {
         ASSERT_EQ( queue.del( position ), model.erase( position ) > 0 );
      }
      ASSERT_EQ( queue.size(), model.size() );
      if ( !model.empty() ) {
         ASSERT_EQ( queue.frontPosition(), model.begin()->first );
         ASSERT_EQ( queue.front(), model.begin()->second );
      }
      ASSERT_EQ( queue.find( position ) != nullptr, model.contains( position ) );
   }
}

// Slots outside of the span read as 0.
TEST( ByteQueue, agreesWithADeque ) {
   ByteQueue< 8 > queue;
   std::deque< U8 > span;
   U32 head = 0;
   auto offset = [&]( U32 slot ) { return ( slot + byteQueueSlots - head ) % byteQueueSlots; };
   auto at = [&]( U32 slot ) { return offset( slot ) < span.size() ? span[offset( slot )] : 0; };
   auto put = [&]( U32 slot, U8 byte ) {
      head = span.empty() ? slot : head;
      if ( U32 const i = offset( slot ); i < span.size() ) {
         span[i] = byte;
      } else if ( i == span.size() ) {
         span.push_back( byte );
      } else if ( i + 1 == byteQueueSlots ) {
         span.push_front( byte );
         head = slot;
      } else {
         return false;
      }
      return true;
   };
   auto del = [&]( U32 slot ) {
      U32 const i = offset( slot );
      if ( i >= span.size() ) {
         return false;
      }
      bool const atEnd = i == 0 || i + 1 == span.size();
      bool const changes = atEnd || span[i] != 0;
      if ( atEnd ) {
         span.erase( span.begin() + i );
         head = i == 0 ? ( head + 1 ) % byteQueueSlots : head;
      } else {
         span[i] = 0;
      }
      return changes;
   };
   Random random;
   for ( U32 step = 0; step < 200'000; ++step ) {
      U8 const byte = static_cast< U8 >( random.below( 4 ) );
      U32 const slot = random.below( byteQueueSlots );
      U32 const dice = random.below( 16 );
      if ( dice < 4 && span.size() == byteQueueSlots ) {
         ASSERT_THROW( queue.enq( byte ), RangeException );
      } else if ( dice < 4 ) {
         queue.enq( byte );
         put( head + static_cast< U32 >( span.size() ), byte );
      } else if ( dice < 8 ) {
         ASSERT_EQ( queue.deq(), at( head ) );
         del( head );
      } else if ( dice < 12 ) {
         if ( put( slot, byte ) ) {
            queue.put( slot, byte );
         } else {
            ASSERT_THROW( queue.put( slot, byte ), RangeException );
         }
      } else {
         ASSERT_EQ( queue.del( slot ), del( slot ) );
      }
      ASSERT_EQ( queue.head(), head );
      ASSERT_EQ( queue.count(), span.size() );
      U8 copy[40];
      queue.copyOut( copy, sizeof copy );
      for ( U32 i = 0; i < byteQueueSlots; ++i ) {
         ASSERT_EQ( queue.at( i ), at( i ) );
         ASSERT_TRUE( i >= sizeof copy || copy[i] == at( i ) );
      }
      ASSERT_TRUE( queue.sameAs( copy, sizeof copy ) );
      copy[slot % 40] ^= 1;
      ASSERT_FALSE( queue.sameAs( copy, sizeof copy ) );
   }
}

} // namespace
} // namespace Korv
