// The collections against those of the standard library, under random operations.
#include "mrp/platform/korv/ByteQueue.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/korv/Ptr.h"
#include "mrp/platform/korv/Queue.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <map>
#include <random>
#include <vector>

namespace Korv {
namespace {

class Random {
 public:
   U32 below( U32 n ) { return static_cast< U32 >( engine_() % n ); }

 private:
   std::mt19937 engine_{ 7 };
};

// The model of an insertion-ordered map.
struct ByInsertion {
   std::list< std::pair< U64, U32 > > members;
   auto at( U64 key ) {
      return std::find_if( members.begin(), members.end(),
                           [&]( auto const & m ) { return m.first == key; } );
   }
   bool put( U64 key, U32 value ) {
      if ( auto const found = at( key ); found != members.end() ) {
         found->second = value;
         return false;
      }
      members.emplace_back( key, value );
      return true;
   }
   bool erase( U64 key ) {
      auto const found = at( key );
      return found != members.end() && ( members.erase( found ), true );
   }
};
struct ByKey {
   std::map< U64, U32 > members;
   auto at( U64 key ) { return members.find( key ); }
   bool put( U64 key, U32 value ) { return members.insert_or_assign( key, value ).second; }
   bool erase( U64 key ) { return members.erase( key ) > 0; }
};

template < class M, class S >
struct Pair {
   using Map = M;
   using Model = S;
};
template < class P >
class MapTest : public testing::Test {
 protected:
   void expectSame() {
      ASSERT_EQ( map.size(), model.members.size() );
      auto expected = model.members.begin();
      for ( auto walk = map.walk(); walk; ++walk, ++expected ) {
         ASSERT_EQ( walk.key(), expected->first );
         ASSERT_EQ( walk.value(), expected->second );
      }
   }
   void change( U64 key ) {
      if ( random.below( 2 ) ) {
         U32 const value = random.below( 1000 );
         ASSERT_EQ( map.insertOrAssign( key, value ), model.put( key, value ) );
      } else {
         ASSERT_EQ( map.erase( key ), model.erase( key ) );
      }
      auto const * const found = map.find( key );
      auto const expected = model.at( key );
      ASSERT_EQ( found != nullptr, expected != model.members.end() );
      if ( found ) {
         ASSERT_EQ( *found, expected->second );
      }
   }

   typename P::Map map;
   typename P::Model model;
   Random random;
};
using Maps = testing::Types< Pair< HashMap< U64, U32 >, ByInsertion >,
                             Pair< OrderedMap< U64, U32 >, ByKey > >;
TYPED_TEST_SUITE( MapTest, Maps );

TYPED_TEST( MapTest, agreesWithTheModel ) {
   for ( U32 const keys : { 3u, 12u, 400u } ) { // from few members to several rows and tables
      for ( U32 round = 0; round < 40; ++round ) {
         // Now and then a run of neighbours, as frames bring them, or a hole of them.
         U64 const first = this->random.below( keys );
         bool const run = this->random.below( 3 ) == 0;
         for ( U32 i = 0; i < 150; ++i ) {
            ASSERT_NO_FATAL_FAILURE( this->change( run ? first + i : this->random.below( keys ) ) );
         }
         ASSERT_NO_FATAL_FAILURE( this->expectSame() );
      }
   }
}

TYPED_TEST( MapTest, aWalkMayDeleteAnyMemberAndMeetsTheOthersOnce ) {
   for ( U32 round = 0; round < 200; ++round ) {
      U32 const size = 1 + this->random.below( 200 );
      for ( U32 i = 0; i < size; ++i ) {
         ASSERT_NO_FATAL_FAILURE( this->change( this->random.below( 300 ) ) );
      }
      std::vector< U64 > met;
      std::vector< U64 > expected;
      for ( auto const & member : this->model.members ) {
         expected.push_back( member.first );
      }
      for ( auto walk = this->map.walk(); walk; ++walk ) {
         U64 const current = walk.key();
         met.push_back( current );
         U32 const dice = this->random.below( 4 );
         if ( dice == 0 ) { // the current one
            this->map.erase( current );
            this->model.erase( current );
         } else if ( dice == 1 ) { // any: if not met yet, it is not to be met
            U64 const other = this->random.below( 300 );
            this->map.erase( other );
            this->model.erase( other );
            if ( std::find( met.begin(), met.end(), other ) == met.end() ) {
               std::erase( expected, other );
            }
         }
      }
      ASSERT_EQ( met, expected );
      ASSERT_NO_FATAL_FAILURE( this->expectSame() );
   }
}

TYPED_TEST( MapTest, aWalkMayAddMembersAndEndsStill ) {
   for ( U64 key = 0; key < 20; ++key ) {
      this->map.insertOrAssign( key * 100, 0 );
   }
   std::vector< U64 > met;
   for ( auto walk = this->map.walk(); walk; ++walk ) {
      met.push_back( walk.key() );
      if ( met.size() <= 20 ) {
         this->map.insertOrAssign( walk.key() + 1, 1 );
         this->map.erase( walk.key() );
      }
   }
   // Both orders put a newcomer behind the current member; the ordered one right behind it.
   ASSERT_TRUE( std::is_sorted( met.begin(), met.begin() + 20 ) );
   EXPECT_GE( met.size(), 20u );
   EXPECT_LE( met.size(), 40u );
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
      switch ( random.below( 8 ) ) {
      case 0:
      case 1:
      case 2:
      case 3:
         next = std::max( next, model.empty() ? 0 : model.rbegin()->first + 1 );
         ASSERT_EQ( queue.enq( value ), next );
         model[next++] = value;
         break;
      case 4:
      case 5:
         ASSERT_EQ( queue.deq(), model.empty() ? 0 : model.begin()->second );
         if ( !model.empty() ) {
            model.erase( model.begin() );
         }
         break;
      case 6:
         ASSERT_EQ( queue.put( position, value ),
                    !model.contains( position ) || model[position] != value );
         model[position] = value;
         break;
      default: ASSERT_EQ( queue.del( position ), model.erase( position ) > 0 ); break;
      }
      ASSERT_EQ( queue.size(), model.size() );
      if ( !model.empty() ) {
         ASSERT_EQ( queue.frontPosition(), model.begin()->first );
         ASSERT_EQ( queue.front(), model.begin()->second );
      }
      ASSERT_EQ( queue.find( position ) != nullptr, model.contains( position ) );
   }
}

std::string refusal( std::function< void() > const & work ) {
   try {
      work();
      return {};
   } catch ( RangeException const & error ) {
      return error.what();
   }
}

// A ring of slots with a span; slots outside it read as 0.
TEST( ByteQueue, agreesWithARingOfSlots ) {
   ByteQueue< 8 > queue;
   std::array< U8, byteQueueSlots > slots{};
   U32 head = 0, count = 0;
   Random random;
   auto slot = [&]( U32 i ) { return ( head + i ) % byteQueueSlots; };
   for ( U32 step = 0; step < 200'000; ++step ) {
      U8 const byte = static_cast< U8 >( random.below( 4 ) );
      U32 const at = random.below( byteQueueSlots );
      switch ( random.below( 5 ) ) {
      case 0:
         if ( count == byteQueueSlots ) {
            ASSERT_EQ( refusal( [&] { queue.enq( byte ); } ), "ArrayQueueStack full" );
         } else {
            queue.enq( byte );
            slots[slot( count++ )] = byte;
         }
         break;
      case 1:
         ASSERT_EQ( queue.deq(), count ? slots[head] : 0 );
         if ( count ) {
            slots[head] = 0;
            head = slot( 1 );
            --count;
         }
         break;
      case 2: {
         if ( count == 0 ) {
            head = at;
         }
         U32 const i = ( at + byteQueueSlots - head ) % byteQueueSlots;
         if ( i > count && i != byteQueueSlots - 1 ) {
            ASSERT_EQ( refusal( [&] { queue.put( at, byte ); } ), "outside of queue" );
            break;
         }
         queue.put( at, byte );
         if ( i >= count ) {
            head = i == count ? head : at;
            ++count;
         }
         slots[at] = byte;
         break;
      }
      case 3: {
         U32 const i = ( at + byteQueueSlots - head ) % byteQueueSlots;
         bool const ofSpan = i < count;
         bool const atEnd = ofSpan && ( i == 0 || i == count - 1 );
         ASSERT_EQ( queue.del( at ), ofSpan && ( atEnd || slots[at] != 0 ) );
         if ( atEnd ) {
            head = i == 0 ? slot( 1 ) : head;
            --count;
         }
         if ( ofSpan ) {
            slots[at] = 0;
         }
         break;
      }
      default:
         if ( random.below( 4 ) == 0 ) { // a new span: what lies in it stays
            U32 const span = random.below( byteQueueSlots + 1 );
            queue.metadataIs( { static_cast< U8 >( at ), static_cast< U8 >( span ) } );
            for ( U32 i = span; i < byteQueueSlots; ++i ) {
               slots[( at + i ) % byteQueueSlots] = 0;
            }
            head = at;
            count = span;
         }
      }
      ASSERT_EQ( queue.count(), count );
      ASSERT_EQ( queue.head(), head );
      for ( U32 i = 0; i < byteQueueSlots; ++i ) {
         ASSERT_EQ( queue.at( i ), slots[i] );
      }
      U8 copy[40];
      queue.copyOut( copy, sizeof copy );
      ASSERT_TRUE( std::equal( copy, copy + sizeof copy, slots.begin() ) );
      ASSERT_TRUE( queue.sameAs( copy, sizeof copy ) );
      copy[at % 40] ^= 1;
      ASSERT_FALSE( queue.sameAs( copy, sizeof copy ) );
   }
}

} // namespace
} // namespace Korv
