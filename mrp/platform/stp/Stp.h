// The published status of the spanning tree: protocol instances, in each the tree instances, in
// each the ports with their roles. All of it belongs to the agent; the names are its own.
#pragma once

#include "mrp/platform/bridging/Bridging.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/HashMap.h"
#include "mrp/platform/korv/Members.h"

namespace Stp {

using Korv::Name;

// The records of one level under one parent, by name.
template < class Child >
class Children {
 public:
   Korv::HashMap< Name, Korv::Ptr< Child > > const & byName() const { return byName_; }
   Child * find( Name const & name ) const { return Korv::memberAt( byName_, name ); }
   // Puts a record in that is not there yet.
   void put( Korv::Entity * parent, Korv::Ptr< Child > const & child ) {
      child->parentIs( parent );
      byName_.insertOrAssign( child->name(), child );
   }
   // The record, out of the map, or null.
   Korv::Ptr< Child > take( Name const & name ) {
      Korv::Ptr< Child > const child = find( name );
      if ( child ) {
         child->parentIs( nullptr );
         byName_.erase( name );
      }
      return child;
   }
   Children() = default;
   Children( Children const & ) = delete;
   Children & operator=( Children const & ) = delete;
   ~Children() {
      for ( auto walk = byName_.walk(); walk; ++walk ) {
         walk.value()->parentIs( nullptr );
      }
   }

 private:
   Korv::HashMap< Name, Korv::Ptr< Child > > byName_;
};

// A record is named by its key.
class NamedRecord : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

 protected:
   Korv::String8 keyText() const override { return name(); }
};

class MstiPortStatus : public NamedRecord {
 public:
   enum class Role : Korv::U32 { unknown, root, designated, alternate, backup, master, disabled };

   MstiPortStatus( Name name, Role role ) : NamedRecord( std::move( name ) ), role_( role ) {}

   class Reactor : public Korv::ReactorOn< MstiPortStatus > {
    public:
      virtual void onRole() {}
   };

   Role role() const { return role_; }
   void roleIs( Role role ) { set( role_, role, &Reactor::onRole ); }
   Korv::String8 parentAttrName() const override { return "mstiPortStatus"; }

 private:
   Role role_;
};

class MstiStatus : public NamedRecord {
 public:
   using NamedRecord::NamedRecord;

   class Reactor : public Korv::ReactorOn< MstiStatus > {
    public:
      // A port has come or gone.
      virtual void onMstiPortStatus( Name const & /* name */ ) {}
   };

   Korv::HashMap< Name, Korv::Ptr< MstiPortStatus > > const & mstiPortStatus() const {
      return mstiPortStatus_.byName();
   }
   MstiPortStatus * mstiPortStatus( Name const & name ) const {
      return mstiPortStatus_.find( name );
   }
   // A port appears together with its role, as one change.
   MstiPortStatus * mstiPortStatusIs( Name const & name, MstiPortStatus::Role role );
   void mstiPortStatusDel( Name const & name );
   Korv::String8 parentAttrName() const override { return "mstiStatus"; }

 private:
   Children< MstiPortStatus > mstiPortStatus_;
};

class StpiStatus : public NamedRecord {
 public:
   using NamedRecord::NamedRecord;

   class Reactor : public Korv::ReactorOn< StpiStatus > {
    public:
      // A tree instance has come or gone.
      virtual void onMstiStatus( Name const & /* name */ ) {}
   };

   Korv::HashMap< Name, Korv::Ptr< MstiStatus > > const & mstiStatus() const {
      return mstiStatus_.byName();
   }
   MstiStatus * mstiStatus( Name const & name ) const { return mstiStatus_.find( name ); }
   MstiStatus * mstiStatusIs( Name const & name );
   void mstiStatusDel( Name const & name );
   Korv::String8 parentAttrName() const override { return "stpiStatus"; }

 private:
   Children< MstiStatus > mstiStatus_;
};

class Status : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;

   class Reactor : public Korv::ReactorOn< Status > {
    public:
      // A protocol instance has come or gone.
      virtual void onStpiStatus( Name const & /* name */ ) {}
      virtual void onStpMode() {}
   };

   // What runs: 0, 2 and 3 have one tree for all, -1 is none, 100 a backup link and 101 a tree a
   // VLAN.
   Korv::S32 stpMode() const { return stpMode_; }
   void stpModeIs( Korv::S32 mode ) { set( stpMode_, mode, &Reactor::onStpMode ); }

   Korv::HashMap< Name, Korv::Ptr< StpiStatus > > const & stpiStatus() const {
      return stpiStatus_.byName();
   }
   StpiStatus * stpiStatus( Name const & name ) const { return stpiStatus_.find( name ); }
   StpiStatus * stpiStatusIs( Name const & name );
   void stpiStatusDel( Name const & name );

 private:
   Korv::S32 stpMode_ = 0;
   Children< StpiStatus > stpiStatus_;
};

// The name of the tree instance of a VLAN that has a tree of its own: "Vl7".
std::string pvstInstanceName( Bridging::VlanConfig const & vlanConfig );

std::ostream & operator<<( std::ostream & out, MstiPortStatus::Role role );

} // namespace Stp

template <>
struct Korv::EnumNames< Stp::MstiPortStatus::Role > {
   static constexpr char const * type = "Role";
   static constexpr std::array names{ "unknown", "root",   "designated", "alternate",
                                      "backup",  "master", "disabled" };
};
