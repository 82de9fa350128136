// An ordered map for keys that come and are walked in runs: sorted rows of up to 64 members, with
// the lowest key of each row on top. A member costs its key and its value and nothing else; rows
// that grow at their end are filled to the brim; and the neighbour of the member found last is
// found in one step, which is what frames and walks ask for.
//
//  1. No row is empty; keys ascend within a row and from row to row; lowest_[ r ] is the first key
//     of rows_[ r ].
//  2. A walk survives any change of the map: it finds its next member by key.
//
// A pointer to a value is good until the next change of the map. A newcomer for which there is no
// memory leaves the map as it was.
#pragma once

#include "mrp/platform/korv/InsertOrAssign.h"
#include "mrp/platform/korv/Types.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace Korv {

template < class K, class V >
class OrderedMap {
   static constexpr std::size_t rowSize = 64;

   // Some members that stand side by side, in memory that doubles, or for a whole row from the
   // start behind a full one. When the first one goes, as in a set that is worked off from its
   // front, the others stay where they are until room is needed behind the last.
   class Row {
    public:
      std::size_t size() const { return size_; }
      bool isFull() const { return size_ >= rowSize; }
      K const & key( std::size_t at ) const { return keys_[at]; }
      V & value( std::size_t at ) const { return values_[at]; }
      K const * begin() const { return keys_; }
      K const * end() const { return keys_ + size_; }

      void prefetch() const {
         __builtin_prefetch( keys_ );
         __builtin_prefetch( values_ );
      }

      // For one more behind the last, or for so many in all.
      void makeRoom() {
         if ( keys_ + size_ != keyRoom_.get() + room_ ) {
            return;
         }
         if ( size_ < room_ && size_ <= room_ / 2 ) {
            std::copy( keys_, keys_ + size_, keyRoom_.get() );
            std::move( values_, values_ + size_, valueRoom_.get() );
            keys_ = keyRoom_.get();
            values_ = valueRoom_.get();
         } else {
            makeRoom( std::max( 2 * size_, 1u ) );
         }
      }
      void makeRoom( std::size_t room ) {
         auto keys = std::make_unique< K[] >( room );
         auto values = std::make_unique< V[] >( room );
         std::copy( keys_, keys_ + size_, keys.get() );
         std::move( values_, values_ + size_, values.get() );
         keys_ = keys.get();
         values_ = values.get();
         keyRoom_ = std::move( keys );
         valueRoom_ = std::move( values );
         room_ = static_cast< U32 >( room );
      }
      // There is room.
      void insert( std::size_t at, K const & key, V && value ) {
         if ( at < size_ ) {
            std::move_backward( keys_ + at, keys_ + size_, keys_ + size_ + 1 );
            std::move_backward( values_ + at, values_ + size_, values_ + size_ + 1 );
         }
         keys_[at] = key;
         values_[at] = std::move( value );
         ++size_;
      }
      // What stood there, which the caller lets go when the row is whole again.
      V take( std::size_t at ) {
         V taken = std::move( values_[at] );
         if ( at == 0 ) {
            ++keys_;
            ++values_;
         } else {
            std::move( keys_ + at + 1, keys_ + size_, keys_ + at );
            std::move( values_ + at + 1, values_ + size_, values_ + at );
         }
         --size_;
         return taken;
      }
      // The members from there on go to the end of the other row, which has room for them.
      void moveTo( Row & other, std::size_t from ) {
         std::copy( keys_ + from, keys_ + size_, other.keys_ + other.size_ );
         std::move( values_ + from, values_ + size_, other.values_ + other.size_ );
         other.size_ += size_ - static_cast< U32 >( from );
         size_ = static_cast< U32 >( from );
      }

    private:
      K * keys_ = nullptr; // of the first member
      V * values_ = nullptr;
      U32 size_ = 0;
      U32 room_ = 0;
      std::unique_ptr< K[] > keyRoom_;
      std::unique_ptr< V[] > valueRoom_;
   };
   struct Place {
      std::size_t row = 0;
      std::size_t at = 0;
   };

 public:
   OrderedMap() = default;
   OrderedMap( OrderedMap const & ) = delete;
   OrderedMap & operator=( OrderedMap const & ) = delete;

   std::size_t size() const { return size_; }
   bool empty() const { return size_ == 0; }
   bool isMember( K const & key ) const { return find( key ) != nullptr; }

   V * find( K const & key ) {
      return const_cast< V * >( static_cast< OrderedMap const * >( this )->find( key ) );
   }
   V const * find( K const & key ) const {
      // The neighbour of the member found last, that member itself, and only then a search.
      if ( last_.row ) {
         for ( std::size_t const at : { last_.at + 1, last_.at } ) {
            if ( at < last_.row->size() && last_.row->key( at ) == key ) {
               last_.at = at;
               return &last_.row->value( at );
            }
         }
      }
      return search( key );
   }

   // The value some places behind the one found last, or null: for who walks by find() and wants
   // what comes to be near when its turn has come.
   V const * ahead( std::size_t places ) const {
      Row const * row = last_.row;
      if ( !row ) {
         return nullptr;
      }
      std::size_t at = last_.at + places;
      if ( at >= row->size() ) [[unlikely]] {
         at -= row->size();
         if ( ++row == rows_.data() + rows_.size() || at >= row->size() ) {
            return nullptr;
         }
      }
      return &row->value( at );
   }

   // The value under the key, made by `make()` if there is none yet, which leaves the map alone.
   template < class Make >
   V & findOrMake( K const & key, Make && make ) {
      bool const behindAll = isBehindAll( key );
      if ( !behindAll ) {
         if ( V * const found = find( key ) ) {
            return *found;
         }
      }
      V fresh = make();
      Place const place =
         insertAt( behindAll ? end() : lowerBound( key ), key, std::move( fresh ) );
      last_ = { &rows_[place.row], place.at };
      return rows_[place.row].value( place.at );
   }

   // True if the key was not there before.
   bool insertOrAssign( K const & key, V value ) {
      return Korv::insertOrAssign( *this, key, std::move( value ) );
   }

   // Takes the member out; true if it was there. The value lives until it has left the map, so
   // that its end may come back here.
   bool erase( K const & key ) {
      if ( !find( key ) ) {
         return false;
      }
      Place const place{ static_cast< std::size_t >( last_.row - rows_.data() ), last_.at };
      Row & row = rows_[place.row];
      [[maybe_unused]] V const leaving = row.take( place.at );
      // The next key in order now stands behind the place before this one.
      last_ = { &row, place.at - 1 };
      if ( row.size() == 0 ) {
         auto const rowOffset = static_cast< std::ptrdiff_t >( place.row );
         rows_.erase( rows_.begin() + rowOffset );
         lowest_.erase( lowest_.begin() + rowOffset );
         last_ = {};
      } else {
         lowest_[place.row] = row.key( 0 );
      }
      --size_;
      ++changes_;
      return true;
   }

   void clear() {
      while ( !empty() ) {
         erase( highest() );
      }
   }

   // Walk, by ascending key: `for ( auto w = map.walk(); w; ++w ) use( w.key(), w.value() );`
   class Walk {
    public:
      explicit operator bool() const { return valid_; }
      Walk & operator++() {
         if ( changes_ == map_->changes_ ) {
            map_->stepForward( place_ );
         } else if ( !map_->isNextOf( place_, key_ ) ) {
            place_ = map_->upperBound( key_ );
         }
         settle();
         return *this;
      }
      // A copy: the key is good also when its member has gone.
      K const & key() const { return key_; }
      // The member's value; the member must still be there.
      V const & value() const { return *map_->find( key_ ); }

    private:
      friend class OrderedMap;
      explicit Walk( OrderedMap const * map ) : map_( map ) { settle(); }
      void settle() {
         changes_ = map_->changes_;
         valid_ = map_->isPlace( place_ );
         if ( valid_ ) {
            key_ = map_->rows_[place_.row].key( place_.at );
         }
      }
      OrderedMap const * map_;
      Place place_;
      U64 changes_ = 0;
      K key_{};
      bool valid_ = false;
   };
   Walk walk() const { return Walk( this ); }

 private:
   V const * search( K const & key ) const {
      if ( isBehindAll( key ) ) {
         return nullptr;
      }
      Place const place = lowerBound( key );
      if ( !isAt( place, key ) ) {
         return nullptr;
      }
      last_ = { &rows_[place.row], place.at };
      // Whoever asks for one member after the other comes here once a row: the next one is to be
      // near by then. Its first lines do; what follows them the processor fetches by itself.
      if ( place.row + 1 < rows_.size() ) {
         rows_[place.row + 1].prefetch();
      }
      return &last_.row->value( place.at );
   }

   bool isPlace( Place const & place ) const {
      return place.row < rows_.size() && place.at < rows_[place.row].size();
   }
   bool isAt( Place const & place, K const & key ) const {
      return isPlace( place ) && rows_[place.row].key( place.at ) == key;
   }
   void stepForward( Place & place ) const {
      if ( place.row < rows_.size() && ++place.at >= rows_[place.row].size() ) {
         ++place.row;
         place.at = 0;
      }
   }

   // The row that holds or would take the key: the last whose lowest key is not above it.
   std::size_t rowOf( K const & key ) const {
      auto const above = std::upper_bound( lowest_.begin(), lowest_.end(), key );
      return above == lowest_.begin() ? 0
                                      : static_cast< std::size_t >( above - lowest_.begin() ) - 1;
   }
   Place lowerBound( K const & key ) const {
      std::size_t const row = rowOf( key );
      Row const & keys = rows_[row];
      auto const at = std::lower_bound( keys.begin(), keys.end(), key );
      return { row, static_cast< std::size_t >( at - keys.begin() ) };
   }
   // The first member above the key stands there: the one that a walk was at has gone, most often.
   bool isNextOf( Place const & place, K const & key ) const {
      if ( !isPlace( place ) || !( key < rows_[place.row].key( place.at ) ) ) {
         return false;
      }
      if ( place.at > 0 ) {
         return !( key < rows_[place.row].key( place.at - 1 ) );
      }
      return place.row == 0 || !( key < *( rows_[place.row - 1].end() - 1 ) );
   }
   Place upperBound( K const & key ) const {
      if ( size_ == 0 ) {
         return {};
      }
      Place place = lowerBound( key );
      if ( !isPlace( place ) ) {
         return { place.row + 1, 0 };
      }
      if ( isAt( place, key ) ) {
         stepForward( place );
      }
      return place;
   }
   // Of a key above all, the usual newcomer when runs are put in.
   bool isBehindAll( K const & key ) const { return size_ == 0 || highest() < key; }
   K const & highest() const { return rows_.back().key( rows_.back().size() - 1 ); }
   // Where such a one goes.
   Place end() const {
      return size_ == 0 ? Place{} : Place{ rows_.size() - 1, rows_.back().size() };
   }

   // Room for one more, by doubling.
   template < class Vector >
   static void makeRoom( Vector & in ) {
      if ( in.size() == in.capacity() ) {
         in.reserve( std::max( 2 * in.size(), std::size_t{ 1 } ) );
      }
   }

   // All memory is taken before anything is moved.
   Place insertAt( Place place, K const & key, V && value ) {
      bool const isFull = !rows_.empty() && rows_[place.row].isFull();
      if ( isFull || rows_.empty() ) {
         last_ = {}; // rows move
         makeRoom( rows_ );
         makeRoom( lowest_ );
      }
      if ( isFull ) {
         place = splitAt( place );
      } else if ( rows_.empty() ) {
         Row first;
         first.makeRoom();
         rows_.push_back( std::move( first ) );
         lowest_.push_back( key );
      }
      Row & row = rows_[place.row];
      row.makeRoom();
      row.insert( place.at, key, std::move( value ) );
      if ( place.at == 0 ) {
         lowest_[place.row] = key;
      }
      ++size_;
      ++changes_;
      return place;
   }

   // A full row in two: at its middle, or, when the newcomer goes to its very end, right there, so
   // that keys which come in ascending order fill their rows.
   Place splitAt( Place place ) {
      Row & row = rows_[place.row];
      std::size_t const keep = place.at == row.size() ? row.size() : row.size() / 2;
      Row upper;
      upper.makeRoom( keep == row.size() ? rowSize : row.size() - keep + 1 );
      row.moveTo( upper, keep );
      auto const next = static_cast< std::ptrdiff_t >( place.row ) + 1;
      lowest_.insert( lowest_.begin() + next, upper.size() == 0 ? K{} : upper.key( 0 ) );
      rows_.insert( rows_.begin() + next, std::move( upper ) );
      return place.at > keep || keep == rowSize ? Place{ place.row + 1, place.at - keep } : place;
   }

   std::vector< Row > rows_;
   std::vector< K > lowest_;
   std::size_t size_ = 0;
   U64 changes_ = 0;
   // Of the latest find; at + 1 is where its neighbour would be. Null after a row has gone.
   mutable struct {
      Row const * row = nullptr;
      std::size_t at = 0;
   } last_;
};

} // namespace Korv
