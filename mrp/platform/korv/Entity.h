// A named, published object with attributes that can be watched and mirrored.
#pragma once

#include "mrp/platform/korv/Members.h"
#include "mrp/platform/korv/Notifier.h"
#include "mrp/platform/korv/String8.h"

#include <type_traits>

namespace Korv {

// Counts the changes of membership among children, anywhere in the process. Whoever remembers a
// place in a tree of entities compares the count, and so knows when the place may have gone. A
// class of children that wants a count of its own names itself as its MembershipLevel.
//
// The visibility keeps it one count for the process where a library and its user hide their symbols
// from each other.
template < class Level >
[[gnu::visibility( "default" )]] inline U64 membershipChanges = 0;

// The generic attributes of a published entity are name, fullName, parent, parentAttrName and
// entity (the object itself). A root entity has a name and stores it; a child is identified by its
// key and its place in the parent, has the empty name and stores only the parent.
class Entity : public Notifier {
 public:
   using MembershipLevel = Entity;

   virtual String8 name() const { return {}; }
   // From the root down: "MrpStatus/application/MVRP/attrDatabase/Ethernet1/...".
   virtual String8 fullName() const;
   Entity const * entity() const { return this; }

   // Set when the entity is attached to its parent's collection, null while it stands free. The
   // parent owns the child; this pointer owns nothing.
   Entity * parent() const { return parent_; }
   void parentIs( Entity * parent ) { parent_ = parent; }
   // The parent's attribute that holds this entity.
   virtual String8 parentAttrName() const { return {}; }

 protected:
   // The key's text, for fullName.
   virtual String8 keyText() const { return {}; }

   // The family of operations on a keyed collection of owned children, a map from the key to
   // Ptr< Child >. A child is made from its key and, where it takes them, further values; it may
   // outlive its place here in a reader's hand.
   template < class Map, class K >
   static auto * childAt( Map const & children, K const & key ) {
      return memberAt( children, key );
   }
   // Finds or makes and attaches, without announcing.
   template < class Map, class K, class... V >
   auto * newChild( Map & children, K const & key, V const &... values ) {
      using Child = std::remove_reference_t< decltype( **children.find( key ) ) >;
      return children
         .findOrMake( key,
                      [&] {
                         ++membershipChanges< typename Child::MembershipLevel >;
                         Ptr< Child > child = newValidPtr< Child >( key, values... );
                         child->parentIs( this );
                         return child;
                      } )
         .ptr();
   }
   // Finds it, or makes it and announces it; null if who hears of it takes it away again. A child
   // that is found keeps the values it has.
   template < class Map, class K, class On, class... V >
   auto * childIs( Map & children, K const & key, On on, V const &... values ) {
      if ( auto * const found = childAt( children, key ) ) {
         return found;
      }
      auto * const made = newChild( children, key, values... );
      Ptr const held( made ); // the announcement may end it
      notify( on, key );
      return childAt( children, key );
   }
   template < class Map, class K, class On >
   void childDel( Map & children, K const & key, On on ) {
      auto * const found = children.find( key );
      if ( !found ) {
         return;
      }
      using Child = std::remove_reference_t< decltype( **found ) >;
      Ptr< Child > const child = *found;
      ++membershipChanges< typename Child::MembershipLevel >;
      children.erase( key );
      child->parentIs( nullptr );
      notify( on, key );
   }
   // For a parent's destructor: children that a reader still holds have no parent any more.
   template < class Map >
   static void childrenLeave( Map const & children ) {
      for ( auto child = children.walk(); child; ++child ) {
         child.value()->parentIs( nullptr );
      }
   }
   template < class Map, class On >
   void childDelAll( Map & children, On on ) {
      for ( auto child = children.walk(); child; ++child ) {
         auto const key = child.key();
         childDel( children, key, on );
      }
   }

 private:
   Entity * parent_ = nullptr;
};

// A root of a tree of entities, or an entity that stands alone.
class NamedEntity : public Entity {
 public:
   explicit NamedEntity( Name name ) : name_( std::move( name ) ) {}
   String8 name() const override { return name_; }

 private:
   Name name_;
};

} // namespace Korv
