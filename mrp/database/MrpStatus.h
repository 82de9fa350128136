// The status tree: what the participant believes, published.
//
//    MrpStatus                          the root, made by its owner and lent to the participant
//      MrpApplicationDatabase           by MrpApplication; with it the LeaveAll times
//        MrpIntfApplicant               by interface
//          MrpIntfTypeApplicant         by attribute type
//            MrpAttrDatabase            by attribute key, ascending
//
// A parent owns its children; whoever reads in the middle of a walk may hold one and thereby keep
// it alive. MrpSm writes the tree: an attribute enters only through MrpDatabaseAddSm and leaves
// only through MrpDatabaseDeleteSm. The levels between are made on demand and stay when empty.
#pragma once

#include "mrp/database/MrpAttrDatabase.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/OrderedMap.h"
#include "mrp/platform/pelk/IntfId.h"

namespace Mrp {

class MrpIntfTypeApplicant : public Korv::Entity {
 public:
   class Reactor : public Korv::ReactorOn< MrpIntfTypeApplicant > {
    public:
      virtual void onMrpAttribute( U64 /* mrpAttributeKey */ ) {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   using Attributes = Korv::OrderedMap< U64, Korv::Ptr< MrpAttrDatabase > >;

   explicit MrpIntfTypeApplicant( U8 attributeType ) : attributeType_( attributeType ) {}
   ~MrpIntfTypeApplicant() override { childrenLeave( mrpAttribute_ ); }
   U8 attributeType() const { return attributeType_; }

   // By ascending key.
   Attributes const & mrpAttribute() const { return mrpAttribute_; }
   MrpAttrDatabase * mrpAttribute( U64 key ) const { return childAt( mrpAttribute_, key ); }
   MrpAttrDatabase * mrpAttributeIs( U64 key ) {
      return childIs( mrpAttribute_, key, &Reactor::onMrpAttribute );
   }
   MrpAttrDatabase * newMrpAttribute( U64 key ) { return newChild( mrpAttribute_, key ); }
   void mrpAttributeDel( U64 key ) { childDel( mrpAttribute_, key, &Reactor::onMrpAttribute ); }
   void mrpAttributeDelAll() { childDelAll( mrpAttribute_, &Reactor::onMrpAttribute ); }

   static constexpr auto attributes() {
      using C = MrpIntfTypeApplicant;
      return Korv::attributeTable( "Mrp::MrpIntfTypeApplicant", //
                                   Korv::keyScalar( 258, "attributeType", &C::attributeType ),
                                   Korv::children( 259, "mrpAttribute", &C::mrpAttribute,
                                                   &C::mrpAttributeIs, &C::mrpAttributeDel ) );
   }
   Korv::String8 parentAttrName() const override { return parent() ? "intfTypeApplicant" : ""; }

 protected:
   Korv::String8 keyText() const override { return std::to_string( attributeType_ ); }

 private:
   Attributes mrpAttribute_;
   U8 attributeType_;
};

class MrpIntfApplicant : public Korv::Entity {
 public:
   class Reactor : public Korv::ReactorOn< MrpIntfApplicant > {
    public:
      virtual void onIntfTypeApplicant( U8 /* attributeType */ ) {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   using Types = Korv::HashMap< U8, Korv::Ptr< MrpIntfTypeApplicant > >;

   explicit MrpIntfApplicant( Pelk::IntfId intfId ) : intfId_( intfId ) {}
   ~MrpIntfApplicant() override { childrenLeave( intfTypeApplicant_ ); }
   Pelk::IntfId intfId() const { return intfId_; }

   Types const & intfTypeApplicant() const { return intfTypeApplicant_; }
   MrpIntfTypeApplicant * intfTypeApplicant( U8 attributeType ) const {
      return childAt( intfTypeApplicant_, attributeType );
   }
   MrpIntfTypeApplicant * intfTypeApplicantIs( U8 attributeType ) {
      return childIs( intfTypeApplicant_, attributeType, &Reactor::onIntfTypeApplicant );
   }
   MrpIntfTypeApplicant * newIntfTypeApplicant( U8 attributeType ) {
      return newChild( intfTypeApplicant_, attributeType );
   }
   void intfTypeApplicantDel( U8 attributeType ) {
      childDel( intfTypeApplicant_, attributeType, &Reactor::onIntfTypeApplicant );
   }
   void intfTypeApplicantDelAll() {
      childDelAll( intfTypeApplicant_, &Reactor::onIntfTypeApplicant );
   }

   static constexpr auto attributes() {
      using C = MrpIntfApplicant;
      return Korv::attributeTable( "Mrp::MrpIntfApplicant", //
                                   Korv::keyScalar( 258, "intfId", &C::intfId ),
                                   Korv::children( 259, "intfTypeApplicant", &C::intfTypeApplicant,
                                                   &C::intfTypeApplicantIs,
                                                   &C::intfTypeApplicantDel ) );
   }
   Korv::String8 parentAttrName() const override { return parent() ? "attrDatabase" : ""; }

 protected:
   Korv::String8 keyText() const override { return intfId_.stringValue(); }

 private:
   Pelk::IntfId intfId_;
   Types intfTypeApplicant_;
};

class MrpApplicationDatabase : public Korv::Entity {
 public:
   class Reactor : public Korv::ReactorOn< MrpApplicationDatabase > {
    public:
      virtual void onAttrDatabase( Pelk::IntfId ) {}
      virtual void onLeaveAllTime( MrpLeaveAllKey ) {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   using Interfaces = Korv::HashMap< Pelk::IntfId, Korv::Ptr< MrpIntfApplicant > >;
   using LeaveAllTimes = Korv::HashMap< MrpLeaveAllKey, Korv::Seconds >;

   explicit MrpApplicationDatabase( MrpApplication application ) : mrpApplication_( application ) {}
   ~MrpApplicationDatabase() override { childrenLeave( attrDatabase_ ); }
   MrpApplication mrpApplication() const { return mrpApplication_; }

   Interfaces const & attrDatabase() const { return attrDatabase_; }
   MrpIntfApplicant * attrDatabase( Pelk::IntfId intfId ) const {
      return childAt( attrDatabase_, intfId );
   }
   MrpIntfApplicant * attrDatabaseIs( Pelk::IntfId intfId ) {
      return childIs( attrDatabase_, intfId, &Reactor::onAttrDatabase );
   }
   MrpIntfApplicant * newAttrDatabase( Pelk::IntfId intfId ) {
      return newChild( attrDatabase_, intfId );
   }
   void attrDatabaseDel( Pelk::IntfId intfId ) {
      childDel( attrDatabase_, intfId, &Reactor::onAttrDatabase );
   }
   void attrDatabaseDelAll() { childDelAll( attrDatabase_, &Reactor::onAttrDatabase ); }
   // Two levels down: the node of an interface and type, or null if either is missing.
   MrpIntfTypeApplicant * intfTypeApplicant( Pelk::IntfId intfId, U8 attributeType ) const {
      MrpIntfApplicant const * const intf = attrDatabase( intfId );
      return intf ? intf->intfTypeApplicant( attributeType ) : nullptr;
   }

   // The period chosen last per interface and type, in seconds; kept by the LeaveAll machines.
   LeaveAllTimes const & leaveAllTime() const { return leaveAllTime_; }
   // 0 if there is none.
   Korv::Seconds leaveAllTime( MrpLeaveAllKey const & key ) const {
      return valueAt( leaveAllTime_, key );
   }
   void leaveAllTimeIs( MrpLeaveAllKey key, Korv::Seconds period ) {
      setMember( leaveAllTime_, key, period, &Reactor::onLeaveAllTime );
   }
   void newLeaveAllTime( MrpLeaveAllKey key, Korv::Seconds period ) {
      leaveAllTime_.insertOrAssign( key, period );
   }
   void leaveAllTimeDel( MrpLeaveAllKey key ) {
      delMember( leaveAllTime_, key, &Reactor::onLeaveAllTime );
   }
   void leaveAllTimeDelAll() { delAllMembers( leaveAllTime_, &Reactor::onLeaveAllTime ); }

   static constexpr auto attributes() {
      using C = MrpApplicationDatabase;
      return Korv::attributeTable( "Mrp::MrpApplicationDatabase", //
                                   Korv::keyScalar( 258, "mrpApplication", &C::mrpApplication ),
                                   Korv::children( 259, "attrDatabase", &C::attrDatabase,
                                                   &C::attrDatabaseIs, &C::attrDatabaseDel ),
                                   Korv::map( 260, "leaveAllTime", &C::leaveAllTime,
                                              &C::leaveAllTimeIs, &C::leaveAllTimeDel ) );
   }
   Korv::String8 parentAttrName() const override { return parent() ? "application" : ""; }

 protected:
   Korv::String8 keyText() const override { return stringValue( mrpApplication_ ); }

 private:
   MrpApplication mrpApplication_;
   Interfaces attrDatabase_;
   LeaveAllTimes leaveAllTime_;
};

class MrpStatus : public Korv::NamedEntity {
 public:
   class Reactor : public Korv::ReactorOn< MrpStatus > {
    public:
      virtual void onApplication( MrpApplication ) {}
   };
   class KorvNboAttrLogSa; // its adapter on the mirror stream: observability/AttrLogAdapters.h
   using Applications = Korv::HashMap< MrpApplication, Korv::Ptr< MrpApplicationDatabase > >;

   explicit MrpStatus( Korv::Name name ) : NamedEntity( std::move( name ) ) {}
   ~MrpStatus() override { childrenLeave( application_ ); }

   Applications const & application() const { return application_; }
   MrpApplicationDatabase * application( MrpApplication key ) const {
      return childAt( application_, key );
   }
   MrpApplicationDatabase * applicationIs( MrpApplication key ) {
      return childIs( application_, key, &Reactor::onApplication );
   }
   MrpApplicationDatabase * newApplication( MrpApplication key ) {
      return newChild( application_, key );
   }
   void applicationDel( MrpApplication key ) {
      childDel( application_, key, &Reactor::onApplication );
   }
   void applicationDelAll() { childDelAll( application_, &Reactor::onApplication ); }

   static constexpr auto attributes() {
      using C = MrpStatus;
      return Korv::attributeTable( "Mrp::MrpStatus",
                                   Korv::children( 258, "application", &C::application,
                                                   &C::applicationIs, &C::applicationDel ) );
   }

 private:
   Applications application_;
};

Korv::Ptr< MrpStatus > mrpStatusFactory( Korv::Name const & name );

} // namespace Mrp
