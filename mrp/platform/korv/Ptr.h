// Intrusive shared ownership. The logic runs on one thread, so the counts are plain.
#pragma once

#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/korv/Types.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace Korv {

// Base of reference-counted objects. The count starts at 0; at zero again the object is destroyed.
// Such objects have identity: they neither copy nor compare.
class PtrInterface {
 public:
   PtrInterface() = default;
   PtrInterface( PtrInterface const & ) = delete;
   PtrInterface & operator=( PtrInterface const & ) = delete;
   virtual ~PtrInterface() = default;

   U32 references() const { return references_; }
   void referenceAdd() const { ++references_; }
   void referenceDrop() const {
      if ( --references_ == 0 ) {
         delete this;
      }
   }

 private:
   mutable U32 references_ = 0;
};

template < class T >
class Ptr {
 public:
   Ptr() = default;
   Ptr( std::nullptr_t ) {}                // NOLINT(google-explicit-constructor): null is a Ptr
   Ptr( T * object ) : object_( object ) { // NOLINT(google-explicit-constructor)
      if ( object_ ) {
         object_->referenceAdd();
      }
   }
   Ptr( Ptr const & other ) : Ptr( other.object_ ) {}
   Ptr( Ptr && other ) noexcept : object_( std::exchange( other.object_, nullptr ) ) {}
   template < class U >
   requires std::is_convertible_v< U *, T * > Ptr( Ptr< U > const & other )
      : Ptr( other.ptr() ) {} // NOLINT(google-explicit-constructor)
   ~Ptr() {
      if ( object_ ) {
         object_->referenceDrop();
      }
   }

   Ptr & operator=( Ptr other ) noexcept {
      std::swap( object_, other.object_ );
      return *this;
   }

   T * ptr() const { return object_; }
   T * operator->() const { return object_; }
   T & operator*() const { return *object_; }
   explicit operator bool() const { return object_ != nullptr; }
   bool operator==( Ptr const & other ) const { return object_ == other.object_; }
   bool operator==( std::nullptr_t ) const { return object_ == nullptr; }

 private:
   T * object_ = nullptr;
};

// A new T that is there: no memory is a RangeException.
template < class T, class... A >
Ptr< T > newValidPtr( A &&... args ) {
   T * const made = new ( std::nothrow ) T( std::forward< A >( args )... );
   if ( !made ) {
      throwRangeException( "null ValidPtr" );
   }
   return made;
}

} // namespace Korv
