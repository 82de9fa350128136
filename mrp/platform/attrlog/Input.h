// One connection's incoming stream, short of the transport: bytes in, changes of entities out.
//
// Trusts nothing: whatever bytes arrive, they are applied, passed over, or end in a StreamError,
// after which the object is good for nothing but its end. What a stream can make us hold has a
// limit in bytes, which are reckoned rather than measured: so many for each member of a collection,
// and for each entity that has no place yet.
//
// Owned by whoever runs the connection, as are the entities at the roots, which outlive it: the
// next stream brings them up to date and deletes what it does not bring.
#pragma once

#include "mrp/platform/attrlog/Adapter.h"
#include "mrp/platform/attrlog/AttributeKinds.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Korv::NboAttrLog {

class Input {
 public:
   static constexpr std::size_t usualMaxBytes = 512 * 1024 * 1024;
   // No member takes more, its adapter and the longest value counted.
   static constexpr std::size_t memberBytes = 640;
   // Makes the adapter of a root that the stream has told of.
   using Root = std::function< std::unique_ptr< Adapter >( Input & input, U64 identifier ) >;

   // `names` outlives it, and counts for the streams that come after it too.
   explicit Input( NameGuard & names, std::size_t maxBytes = usualMaxBytes )
      : names_( names ), maxBytes_( maxBytes ) {}
   Input( Input const & ) = delete;
   Input & operator=( Input const & ) = delete;
   ~Input();

   // Enters a type of root. Roots of other types are passed over, with all that is below them.
   void rootIs( char const * typeName, Root root );
   // The same for an entity with its adapter: rootOf< MrpStatus::KorvNboAttrLogSa >( status ).
   template < class RootAdapter, class E >
   void rootOf( E & entity ) {
      rootIs( RootAdapter::typeName(), [&entity]( Input & input, U64 identifier ) {
         auto adapter = std::make_unique< RootAdapter >( entity );
         input.membersInc( membersBelow( entity ) );
         adapter->handleMounted( input, identifier );
         return adapter;
      } );
   }

   // The stream's next bytes, in pieces of any size. Whole messages are applied at once.
   void handleBytes( std::span< U8 const > bytes );
   U64 messages() const { return messages_; }
   // Whether all that has been made known so far has also been brought: no collection is under way,
   // and no message. It looks at every entity.
   bool isBrought() const;

   // For adapters.
   void adapterIs( U64 identifier, Adapter & adapter ) { adapters_[identifier] = &adapter; }
   void adapterDel( U64 identifier ) { adapters_.erase( identifier ); }
   void membersInc( std::size_t count ) { bytesInc( count * memberBytes ); }
   void membersDec( std::size_t count ) { bytes_ -= count * memberBytes; }
   // The key of an entity that has been made known and has found no place yet. Good until the next
   // call.
   ByteReader takeOrphan( U64 identifier, char const * typeName );

 private:
   struct Orphan {
      std::size_t bytes() const { return memberBytes + typeName.size() + key.size(); }
      std::string typeName;
      std::vector< U8 > key;
   };
   void bytesInc( std::size_t count );
   void handleGreeting( ByteReader greeting );
   void handleMessage( ByteReader message, std::size_t bytes );
   void handleOrphan( U64 identifier, ByteReader & in );

   NameGuard & names_;
   std::size_t maxBytes_;
   std::size_t bytes_ = 0;
   std::unordered_map< std::string, Root > roots_;
   std::unordered_map< U64, Adapter * > adapters_;
   // Entities that have been made known and have no place yet. Those of types that only a later
   // version knows never get one. What is said about them is passed over.
   std::unordered_map< U64, Orphan > orphans_;
   std::vector< std::unique_ptr< Adapter > > rootAdapters_;
   std::unordered_set< std::string > rootsSeen_;
   std::vector< U8 > rest_; // of a message that has not arrived as a whole
   Orphan taken_;
   U64 messages_ = 0;
   bool greeted_ = false;
};

} // namespace Korv::NboAttrLog
