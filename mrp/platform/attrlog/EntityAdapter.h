// The adapter of one kind of entity, generated from its table of attributes. A concrete adapter
// derives from this and says for each reactor which attribute it is:
//
//    class MrpAttrDatabase::KorvNboAttrLogSa final
//       : public Korv::NboAttrLog::EntityAdapter< MrpAttrDatabase > {
//       void onApplicantState() override { handleAttr< 259 >(); }
//       void onAttributeValue( U32 index ) override { handleMember< 262 >( index ); } ...
//
// Read Adapter.h first. Bodies are grouped in EntityAdapterOut.h and EntityAdapterIn.h.
#pragma once

#include "mrp/platform/attrlog/Adapter.h"
#include "mrp/platform/attrlog/AttributeKinds.h"
#include "mrp/platform/attrlog/Input.h"
#include "mrp/platform/korv/Entity.h"

namespace Korv::NboAttrLog {

template < class E >
class EntityAdapter : public Adapter, public E::Reactor {
 public:
   explicit EntityAdapter( E & entity, bool listens = true ) {
      this->isRegisteredNotifieeIs( listens );
      this->notifierIs( &entity );
   }

   static constexpr char const * typeName() { return E::attributes().typeName; }
   E * entity() const { return const_cast< E * >( this->notifier() ); }

   // Receiving; the bodies are in EntityAdapterIn.h.
   //
   // The root's or child's adapter at the receiving end.
   void handleMounted( Input & input, U64 identifier ) { inputIs( &input, identifier ); }
   void handleAttrDeserialization( S16 attrId, ByteReader & in ) override;
   void handleAttrTransaction( U16 attrId, Marker marker ) override;
   bool isBrought() const override;

 protected:
   // Sending; the bodies are in EntityAdapterOut.h.
   //
   // These are what the reactors call. A scalar, or the span of a queue, has changed.
   template < U16 number >
   void handleAttr();
   // A member of a collection has come, changed or gone.
   template < U16 number, class Key >
   void handleMember( Key const & key );

 private:
   template < class >
   friend class EntityAdapter;
   using Table = decltype( E::attributes() );
   static constexpr Table table = E::attributes();
   template < std::size_t place >
   using AttributeAt = std::tuple_element_t< place, decltype( Table::list ) >;
   template < std::size_t place >
   using TraitsAt = Traits< AttributeAt< place > >;
   template < std::size_t place >
   static constexpr Kind kindAt = AttributeAt< place >::kind;
   using FlowIns = typename PartsOf< Table, FlowInOf >::type;

   struct Pending : FlowOut {
      typename PartsOf< Table, FlowOutOf >::type marks;
   };
   struct FlowIn {
      U16 attrId;
      FlowIns parts;
   };

   // The attribute's place in the table.
   static constexpr std::size_t placeOf( U16 number ) {
      std::size_t found = ~std::size_t{ 0 };
      forEachPlace( table, [&]( auto place ) {
         found = isNumber( std::get< place >( table.list ), number ) ? place : found;
      } );
      return found;
   }
   // A child has a key, its first attribute; a root has a name.
   static constexpr bool hasKey() {
      if constexpr ( kindAt< 0 > == Kind::scalar ) {
         return std::get< 0 >( table.list ).isKey;
      }
      return false;
   }
   static constexpr bool hasOnly( auto... kinds ) {
      bool all = true;
      forEachPlace( table,
                    [&]( auto place ) { all = all && ( ( kindAt< place > == kinds ) || ... ); } );
      return all;
   }
   // It has no map and no children, so that a few messages tell all of it.
   static constexpr bool isSmall = hasOnly( Kind::scalar, Kind::queue );
   // A root of scalars, as the counters and the parse context, changes several times with each
   // attribute of each frame. It is told of once an event-loop turn: the first change leaves a flow
   // behind, and the adapter does not listen until that runs, which sends what is not as it was
   // told last. So it costs the engine nothing that grows with the frame.
   static constexpr bool gathers = hasOnly( Kind::scalar ) && !hasKey();
   template < class Attributes, bool >
   struct Told {};
   template < class Attributes >
   struct Told< Attributes, true > {
      typename PartsOf< Attributes, ValueOf >::type values;
      // Keeps the entity alive while the adapter does not listen, and would not hear of its end.
      Ptr< E const > unheard;
   };
   void doListen() override {
      this->isRegisteredNotifieeIs( true );
      if constexpr ( gathers ) {
         told_.unheard = nullptr;
      }
   }
   void doStopListening() {
      told_.unheard = entity();
      this->isRegisteredNotifieeIs( false );
   }

   auto key() const {
      if constexpr ( hasKey() ) {
         return value< 0 >();
      } else {
         return entity()->name();
      }
   }
   template < std::size_t place >
   auto value() const {
      return ( entity()->*std::get< place >( table.list ).reader )();
   }
   template < std::size_t place >
   auto const & collection() const {
      return ( entity()->*std::get< place >( table.list ).reader )();
   }

   template < class Members, class Key >
   static bool isMember( Members const & members, Key const & key ) {
      if constexpr ( requires { members.isMember( key ); } ) {
         return members.isMember( key );
      } else { // a slot of the span
         return ( key + byteQueueSlots - members.head() ) % byteQueueSlots < members.count();
      }
   }

   Pending & pending() { return static_cast< Pending & >( *flowOut() ); }
   Pending const & pending() const { return static_cast< Pending const & >( *flowOut() ); }

   // Sending; each is told at its body.
   template < std::size_t place, class Write, class Mark >
   void handleChange( U16 attrId, Write && write, Mark && mark );
   template < std::size_t place >
   bool isPending() const;
   template < std::size_t place >
   U16 flowAttr();
   template < std::size_t place >
   void doMark( Pending & pending );
   // The span has changed: a walk over its slots begins again.
   template < class Marks >
   static void doMarkSpan( Marks & marks ) {
      marks.dirty = true;
      if ( marks.bookmark ) {
         marks.bookmark->i = 0;
      }
   }
   template < std::size_t place >
   void korvHandleSerialize();
   template < std::size_t place, class Key >
   void korvHandleSerializeSing( Key const & key );
   template < std::size_t place >
   bool korvHandleSerializeColl();
   template < class... Part >
   void doWrite( S16 attrId, Part const &... part );
   template < class To >
   void putOwnOrphan( To & to, U64 parent, U16 parentAttrId ) const;
   template < std::size_t place, class To >
   void putWhole( To & to ) const;
   template < std::size_t place, class Key, class Member >
   void nboAttrLogAdapterIs( Key const & key, Member & member );
   template < std::size_t place, class Key, class Member >
   bool nboAttrLogAdapterDel( Key const & key, Member const * member );

   // Receiving; the same.
   template < std::size_t place >
   void deserialize( S16 attrId, ByteReader & in );
   template < std::size_t place >
   void doGrowSpan( U8 slot );
   template < std::size_t place, class Key >
   void deserializeChild( Key const & key, ByteReader & in );
   template < std::size_t place, class Key >
   void doCountMember( Key const & key );
   template < std::size_t place, class Key >
   void doDelMember( Key const & key );
   template < std::size_t place >
   void doDelUnbrought();
   template < class Mutator, class... Value >
   void apply( U16 attrId, Mutator mutator, Value const &... value );

   std::unique_ptr< FlowOut > createFlowOut() const override {
      return std::make_unique< Pending >();
   }
   bool prepareImmediateTransmission( U16 attrId, bool noBuffer ) const override;
   void doMarkAll() override;
   U16 handleAttrFlowOut( U16 attrId ) override;
   void doSerializeOrphan( U64 parent, U16 parentAttrId ) override;
   bool doSerializeAll( U64 parent, U16 parentAttrId ) override;
   void doDropChildren( std::size_t & limit ) override;
   bool hasEntity() const override { return entity() != nullptr; }

   typename PartsOf< Table, KeptOf >::type kept_;
   std::unique_ptr< FlowIn > flowIn_;
   U32 brought_ = 0; // a bit for each collection that has been brought as a whole
   [[no_unique_address]] Told< Table, gathers > told_;
};

} // namespace Korv::NboAttrLog

#include "mrp/platform/attrlog/EntityAdapterIn.h"
#include "mrp/platform/attrlog/EntityAdapterOut.h"
