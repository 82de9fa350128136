// The adapters of the eight streamed entities: which reactor is which attribute. All else is
// generated from their tables of attributes (platform/attrlog/EntityAdapter.h).
//
// They are made when a root is mounted on a stream; the logic never calls them. A child's stands
// above its parent's, which makes it.
#pragma once

#include "mrp/database/MrpStatus.h"
#include "mrp/platform/attrlog/EntityAdapter.h"
#include "mrp/receive/MrpCounters.h"
#include "mrp/receive/MrpParseContext.h"
#include "mrp/topology/MrpConfig.h"

namespace Mrp {

class MrpAttrDatabase::KorvNboAttrLogSa final
   : public Korv::NboAttrLog::EntityAdapter< MrpAttrDatabase > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onApplicantState() override { handleAttr< 259 >(); }
   void onRegistrarState() override { handleAttr< 260 >(); }
   void onAttributeValueMetadata() override { handleAttr< 261 >(); }
   void onAttributeValue( U32 index ) override { handleMember< 262 >( index ); }
};

class MrpIntfTypeApplicant::KorvNboAttrLogSa final
   : public Korv::NboAttrLog::EntityAdapter< MrpIntfTypeApplicant > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onMrpAttribute( U64 key ) override { handleMember< 259 >( key ); }
};

class MrpIntfApplicant::KorvNboAttrLogSa final
   : public Korv::NboAttrLog::EntityAdapter< MrpIntfApplicant > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onIntfTypeApplicant( U8 attributeType ) override { handleMember< 259 >( attributeType ); }
};

class MrpApplicationDatabase::KorvNboAttrLogSa final
   : public Korv::NboAttrLog::EntityAdapter< MrpApplicationDatabase > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onAttrDatabase( Pelk::IntfId intfId ) override { handleMember< 259 >( intfId ); }
   void onLeaveAllTime( MrpLeaveAllKey key ) override { handleMember< 260 >( key ); }
};

class MrpStatus::KorvNboAttrLogSa final : public Korv::NboAttrLog::EntityAdapter< MrpStatus > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onApplication( MrpApplication application ) override { handleMember< 258 >( application ); }
};

class MrpConfig::KorvNboAttrLogSa final : public Korv::NboAttrLog::EntityAdapter< MrpConfig > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onTimersEnabled() override { handleAttr< 258 >(); }
   void onLeaveTime() override { handleAttr< 259 >(); }
   void onLeaveAllTime() override { handleAttr< 260 >(); }
   void onIntfLeaveTime( Pelk::IntfId intfId ) override { handleMember< 261 >( intfId ); }
   void onIntfLeaveAllTime( Pelk::IntfId intfId ) override { handleMember< 262 >( intfId ); }
   void onTxLeaveAllExpiryTime() override { handleAttr< 263 >(); }
   void onMrpFlooding() override { handleAttr< 264 >(); }
};

class MrpCounters::KorvNboAttrLogSa final : public Korv::NboAttrLog::EntityAdapter< MrpCounters > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onNumOfIncorrectPduVersion() override { handleAttr< 258 >(); }
   void onNumOfUnknownAttributeType() override { handleAttr< 259 >(); }
   void onNumOfMalformedPkts() override { handleAttr< 260 >(); }
   void onNumOfUnknownApplication() override { handleAttr< 261 >(); }
   void onNumOfIncorrectDmac() override { handleAttr< 262 >(); }
   void onNumOfIncorrectEtype() override { handleAttr< 263 >(); }
   void onNumOfPktsProcessed() override { handleAttr< 264 >(); }
   void onNumOfPktsTransmitted() override { handleAttr< 265 >(); }
   void onNumOfJoinIndications() override { handleAttr< 266 >(); }
   void onNumOfLeaveIndications() override { handleAttr< 267 >(); }
};

class MrpParseContext::KorvNboAttrLogSa final
   : public Korv::NboAttrLog::EntityAdapter< MrpParseContext > {
 public:
   using EntityAdapter::EntityAdapter;

 private:
   void onIntfId() override { handleAttr< 258 >(); }
   void onAttributeType() override { handleAttr< 259 >(); }
   void onAttributeKey() override { handleAttr< 260 >(); }
   void onAttributeEvent() override { handleAttr< 261 >(); }
   void onAttributeLength() override { handleAttr< 262 >(); }
   void onAttributeListBytesLeft() override { handleAttr< 263 >(); }
   void onNumberOfValues() override { handleAttr< 264 >(); }
   void onLeaveAll() override { handleAttr< 265 >(); }
   void onSendTxLvAll() override { handleAttr< 266 >(); }
   void onEventsCounter() override { handleAttr< 267 >(); }
};

} // namespace Mrp
