// A hashed map that keeps the order of insertion: whoever walks it sees the same order in each
// run. Members stand in one row; a row of numbers on top of it, by the key's spread, finds them.
//
// A walk survives any change of the map: it remembers the member it stands on by the number that
// the member got when it came, and finds the next one from there. A pointer to a value is good
// until the next insertion.
#pragma once

#include "mrp/platform/korv/InsertOrAssign.h"
#include "mrp/platform/korv/Record.h"
#include "mrp/platform/korv/Types.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Korv {

template < class K, class V >
class HashMap {
   struct Member {
      U64 sequence;
      K key;
      V value;
      bool present;
   };

 public:
   std::size_t size() const { return present_; }
   bool empty() const { return present_ == 0; }
   bool isMember( K const & key ) const { return find( key ) != nullptr; }

   V * find( K const & key ) {
      return const_cast< V * >( static_cast< HashMap const * >( this )->find( key ) );
   }
   V const * find( K const & key ) const {
      Member const * const member = locate( key );
      return member ? &member->value : nullptr;
   }

   // The value under the key, made by `make()` if there is none yet.
   template < class Make >
   V & findOrMake( K const & key, Make && make ) {
      if ( V * found = find( key ) ) {
         return *found;
      }
      V fresh = make();
      makeRoom();
      members_.push_back( Member{ nextSequence_++, key, std::move( fresh ), true } );
      ++present_;
      if ( isIndexed() ) {
         indexAdd( members_.size() - 1 );
      }
      return members_.back().value;
   }

   // True if the key was not there before.
   bool insertOrAssign( K const & key, V value ) {
      return Korv::insertOrAssign( *this, key, std::move( value ) );
   }

   // Takes the member out; true if it was there. The value lives until it has left the map, so
   // that its end may come back here.
   bool erase( K const & key ) {
      Member * const member = const_cast< Member * >( locate( key ) );
      if ( !member ) {
         return false;
      }
      [[maybe_unused]] V const leaving = std::exchange( member->value, V{} );
      member->present = false;
      if ( --present_ == 0 ) {
         members_.clear();
         index_.clear();
      }
      return true;
   }

   // Walk: `for ( auto w = map.walk(); w; ++w ) use( w.key(), w.value() );`
   class Walk {
    public:
      explicit operator bool() const { return valid_; }
      Walk & operator++() {
         auto const & members = map_->members_;
         // Members stand in the order of their numbers, with gaps where some have been cleared out.
         if ( at_ < members.size() && members[at_].sequence == sequence_ ) {
            ++at_;
         } else {
            at_ = static_cast< std::size_t >(
               std::upper_bound( members.begin(), members.end(), sequence_,
                                 []( U64 s, Member const & m ) { return s < m.sequence; } ) -
               members.begin() );
         }
         settle();
         return *this;
      }
      // A copy: the key is good also when its member has gone.
      K const & key() const { return key_; }
      // The member's value; the member must still be there.
      V const & value() const {
         bool const inPlace =
            at_ < map_->members_.size() && map_->members_[at_].sequence == sequence_;
         return inPlace ? map_->members_[at_].value : *map_->find( key_ );
      }

    private:
      friend class HashMap;
      explicit Walk( HashMap const * map ) : map_( map ) { settle(); }
      void settle() {
         auto const & members = map_->members_;
         while ( at_ < members.size() && !members[at_].present ) {
            ++at_;
         }
         if ( at_ < members.size() ) {
            sequence_ = members[at_].sequence;
            key_ = members[at_].key;
         }
         valid_ = at_ < members.size();
      }
      HashMap const * map_;
      std::size_t at_ = 0;
      U64 sequence_ = 0;
      K key_{};
      bool valid_ = false;
   };
   Walk walk() const { return Walk( this ); }

 private:
   // Up to here looking at each member is quicker than scattering the key, and there is no index.
   static constexpr std::size_t fewMembers = 6;

   bool isIndexed() const { return !index_.empty(); }

   Member const * locate( K const & key ) const {
      if ( !isIndexed() ) {
         for ( Member const & member : members_ ) {
            if ( member.present && member.key == key ) {
               return &member;
            }
         }
         return nullptr;
      }
      std::size_t const mask = index_.size() - 1;
      for ( std::size_t slot = spread( key ) & mask; index_[slot] != 0;
            slot = ( slot + 1 ) & mask ) {
         Member const & member = members_[index_[slot] - 1];
         if ( member.present && member.key == key ) {
            return &member;
         }
      }
      return nullptr;
   }

   // Clears out members that have gone once they are half of the row, and keeps the index at most
   // half full.
   void makeRoom() {
      bool const crowded = members_.size() >= 16 && members_.size() >= 2 * present_;
      if ( crowded ) {
         std::erase_if( members_, []( Member const & member ) { return !member.present; } );
      }
      bool const growing =
         members_.size() >= fewMembers && 2 * ( members_.size() + 1 ) > index_.size();
      if ( crowded || growing ) {
         std::size_t slots = 16;
         while ( slots < 4 * ( members_.size() + 1 ) ) {
            slots *= 2;
         }
         index_.assign( slots, 0u );
         for ( std::size_t at = 0; at < members_.size(); ++at ) {
            indexAdd( at );
         }
      }
   }

   void indexAdd( std::size_t at ) {
      std::size_t const mask = index_.size() - 1;
      std::size_t slot = spread( members_[at].key ) & mask;
      while ( index_[slot] != 0 ) {
         slot = ( slot + 1 ) & mask;
      }
      index_[slot] = static_cast< U32 >( at + 1 );
   }

   std::vector< Member > members_;
   std::vector< U32 > index_; // 0: free; else a place in members_, counted from 1
   std::size_t present_ = 0;
   U64 nextSequence_ = 0;
};

} // namespace Korv
