// The published status of the spanning tree: protocol instances, in each the tree instances, in
// each the ports with their roles. All of it belongs to the agent; the names are its own.
#pragma once

#include "mrp/platform/bridging/Bridging.h"
#include "mrp/platform/korv/Entity.h"
#include "mrp/platform/korv/Enum.h"
#include "mrp/platform/korv/HashMap.h"

namespace Stp {

using Korv::Name;

// The records of one level under one parent.
template < class Record >
using Records = Korv::HashMap< Name, Korv::Ptr< Record > >;

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
   ~MstiStatus() override { childrenLeave( mstiPortStatus_ ); }

   class Reactor : public Korv::ReactorOn< MstiStatus > {
    public:
      // A port has come or gone.
      virtual void onMstiPortStatus( Name const & /* name */ ) {}
   };

   Records< MstiPortStatus > const & mstiPortStatus() const { return mstiPortStatus_; }
   MstiPortStatus * mstiPortStatus( Name const & name ) const {
      return childAt( mstiPortStatus_, name );
   }
   // A port appears together with its role, as one change.
   MstiPortStatus * mstiPortStatusIs( Name const & name, MstiPortStatus::Role role );
   void mstiPortStatusDel( Name const & name ) {
      childDel( mstiPortStatus_, name, &Reactor::onMstiPortStatus );
   }
   Korv::String8 parentAttrName() const override { return "mstiStatus"; }

 private:
   Records< MstiPortStatus > mstiPortStatus_;
};

class StpiStatus : public NamedRecord {
 public:
   using NamedRecord::NamedRecord;
   ~StpiStatus() override { childrenLeave( mstiStatus_ ); }

   class Reactor : public Korv::ReactorOn< StpiStatus > {
    public:
      // A tree instance has come or gone.
      virtual void onMstiStatus( Name const & /* name */ ) {}
   };

   Records< MstiStatus > const & mstiStatus() const { return mstiStatus_; }
   MstiStatus * mstiStatus( Name const & name ) const { return childAt( mstiStatus_, name ); }
   MstiStatus * mstiStatusIs( Name const & name );
   void mstiStatusDel( Name const & name ) {
      childDel( mstiStatus_, name, &Reactor::onMstiStatus );
   }
   Korv::String8 parentAttrName() const override { return "stpiStatus"; }

 private:
   Records< MstiStatus > mstiStatus_;
};

class Status : public Korv::NamedEntity {
 public:
   using NamedEntity::NamedEntity;
   ~Status() override { childrenLeave( stpiStatus_ ); }

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

   Records< StpiStatus > const & stpiStatus() const { return stpiStatus_; }
   StpiStatus * stpiStatus( Name const & name ) const { return childAt( stpiStatus_, name ); }
   StpiStatus * stpiStatusIs( Name const & name );
   void stpiStatusDel( Name const & name ) {
      childDel( stpiStatus_, name, &Reactor::onStpiStatus );
   }

 private:
   Korv::S32 stpMode_ = 0;
   Records< StpiStatus > stpiStatus_;
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
