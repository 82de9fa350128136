// The enumerations of the protocol: applications, states and events of the machines, and what
// stands in an MRPDU. Their numbers may not change: `MrpThreePackedEvent`, `MsrpAttrType`,
// `MvrpAttrType` and `MsrpListenerEvent` are wire values, and states and events of the machines
// index the tables of mrp/machines.
//
// Each enumeration X lists its names once, in the table below it; from that come stringValue, what
// operator<< prints, and the conversion XInstance from a number or a name.
#pragma once

#include "mrp/vocabulary/Foundation.h"

namespace Mrp {

// MMRP is a name only: no attribute, parser or encoder of it exists.
enum MrpApplication : U32 { InvalidApplication, MSRP, MVRP, MMRP };

// The numbering is this system's own and follows no table of the standard.
enum MrpApplicantState : U32 {
   mrpVeryAnxiousObserver,
   mrpVeryAnxiousPassive,
   mrpVeryAnxiousNew,
   mrpAnxiousNew,
   mrpAnxiousActive,
   mrpQuietActive,
   mrpLeavingActive,
   mrpAnxiousObserver,
   mrpQuietObserver,
   mrpAnxiousPassive,
   mrpQuietPassive,
   mrpLeavingObserver
};

enum MrpApplicantEvent : U32 {
   appNew,
   appJoin,
   appLv,
   appRedeclare,
   appFlush,
   rxNew,
   rxJoinIn,
   rxIn,
   rxJoinMt,
   rxMt,
   rxLv,
   rxLvAll,
   txLvAll,
   invalidApplicantEvent
};

enum MrpRegistrarState : U32 { mrpIn, mrpLv, mrpMt };

enum MrpRegistrarEvent : U32 {
   regNew,
   regJoinIn,
   regJoinMt,
   regLv,
   regLvAll,
   regTxLvAll,
   regRedeclare,
   regFlush,
   regLeaveTimer,
   invalidRegistrarEvent
};

// Up to lvEvent the digits of a ThreePackedEvents byte. The last two never reach a vector:
// lvAllEvent marks a LeaveAll that travels alone, lvInternal asks mrpSendAttribute to drop an
// attribute without a word on the wire.
enum MrpThreePackedEvent : U32 {
   newEvent,
   joinInEvent,
   inEvent,
   joinMtEvent,
   mtEvent,
   lvEvent,
   lvAllEvent,
   lvInternal
};

enum MrpLeaveAllEvent : U32 { nullLeaveAll, leaveAll };

enum MrpParseStatus : U32 { parseOk, parseEndOfMarkerReached, parseMalformedPkt };

// AttributeType of MSRP messages.
enum MsrpAttrType : U32 {
   invalidAttribute,
   talkerAdvertise,
   talkerFailed,
   listenerVector,
   domainVector
};

// AttributeType of MVRP messages.
enum MvrpAttrType : U32 { invalidAttr, vlanVector };

// Declaration Type of a listener: one field of a FourPackedEvents byte.
enum MsrpListenerEvent : U32 { ignore, askingFailed, ready, readyFailed };

} // namespace Mrp

namespace Korv {

template <>
struct EnumNames< Mrp::MrpApplication > {
   static constexpr char const * type = "MrpApplication";
   static constexpr std::array names{ "InvalidApplication", "MSRP", "MVRP", "MMRP" };
   static_assert( names.size() == Mrp::MMRP + 1 );
};

template <>
struct EnumNames< Mrp::MrpApplicantState > {
   static constexpr char const * type = "MrpApplicantState";
   static constexpr std::array names{
      "mrpVeryAnxiousObserver", "mrpVeryAnxiousPassive", "mrpVeryAnxiousNew",
      "mrpAnxiousNew",          "mrpAnxiousActive",      "mrpQuietActive",
      "mrpLeavingActive",       "mrpAnxiousObserver",    "mrpQuietObserver",
      "mrpAnxiousPassive",      "mrpQuietPassive",       "mrpLeavingObserver" };
   static_assert( names.size() == Mrp::mrpLeavingObserver + 1 );
};

template <>
struct EnumNames< Mrp::MrpApplicantEvent > {
   static constexpr char const * type = "MrpApplicantEvent";
   static constexpr std::array names{ "appNew",   "appJoin",
                                      "appLv",    "appRedeclare",
                                      "appFlush", "rxNew",
                                      "rxJoinIn", "rxIn",
                                      "rxJoinMt", "rxMt",
                                      "rxLv",     "rxLvAll",
                                      "txLvAll",  "invalidApplicantEvent" };
   static_assert( names.size() == Mrp::invalidApplicantEvent + 1 );
};

template <>
struct EnumNames< Mrp::MrpRegistrarState > {
   static constexpr char const * type = "MrpRegistrarState";
   static constexpr std::array names{ "mrpIn", "mrpLv", "mrpMt" };
   static_assert( names.size() == Mrp::mrpMt + 1 );
};

template <>
struct EnumNames< Mrp::MrpRegistrarEvent > {
   static constexpr char const * type = "MrpRegistrarEvent";
   static constexpr std::array names{
      "regNew",     "regJoinIn",    "regJoinMt", "regLv",         "regLvAll",
      "regTxLvAll", "regRedeclare", "regFlush",  "regLeaveTimer", "invalidRegistrarEvent" };
   static_assert( names.size() == Mrp::invalidRegistrarEvent + 1 );
};

template <>
struct EnumNames< Mrp::MrpThreePackedEvent > {
   static constexpr char const * type = "MrpThreePackedEvent";
   static constexpr std::array names{ "newEvent", "joinInEvent", "inEvent",    "joinMtEvent",
                                      "mtEvent",  "lvEvent",     "lvAllEvent", "lvInternal" };
   static_assert( names.size() == Mrp::lvInternal + 1 );
};

template <>
struct EnumNames< Mrp::MrpLeaveAllEvent > {
   static constexpr char const * type = "MrpLeaveAllEvent";
   static constexpr std::array names{ "nullLeaveAll", "leaveAll" };
   static_assert( names.size() == Mrp::leaveAll + 1 );
};

template <>
struct EnumNames< Mrp::MrpParseStatus > {
   static constexpr char const * type = "MrpParseStatus";
   static constexpr std::array names{ "parseOk", "parseEndOfMarkerReached", "parseMalformedPkt" };
   static_assert( names.size() == Mrp::parseMalformedPkt + 1 );
};

template <>
struct EnumNames< Mrp::MsrpAttrType > {
   static constexpr char const * type = "MsrpAttrType";
   static constexpr std::array names{ "invalidAttribute", "talkerAdvertise", "talkerFailed",
                                      "listenerVector", "domainVector" };
   static_assert( names.size() == Mrp::domainVector + 1 );
};

template <>
struct EnumNames< Mrp::MvrpAttrType > {
   static constexpr char const * type = "MvrpAttrType";
   static constexpr std::array names{ "invalidAttr", "vlanVector" };
   static_assert( names.size() == Mrp::vlanVector + 1 );
};

template <>
struct EnumNames< Mrp::MsrpListenerEvent > {
   static constexpr char const * type = "MsrpListenerEvent";
   static constexpr std::array names{ "ignore", "askingFailed", "ready", "readyFailed" };
   static_assert( names.size() == Mrp::readyFailed + 1 );
};

} // namespace Korv

namespace Mrp {

inline constexpr Korv::EnumInstance< MrpApplication > MrpApplicationInstance;
inline constexpr Korv::EnumInstance< MrpApplicantState > MrpApplicantStateInstance;
inline constexpr Korv::EnumInstance< MrpApplicantEvent > MrpApplicantEventInstance;
inline constexpr Korv::EnumInstance< MrpRegistrarState > MrpRegistrarStateInstance;
inline constexpr Korv::EnumInstance< MrpRegistrarEvent > MrpRegistrarEventInstance;
inline constexpr Korv::EnumInstance< MrpThreePackedEvent > MrpThreePackedEventInstance;
inline constexpr Korv::EnumInstance< MrpLeaveAllEvent > MrpLeaveAllEventInstance;
inline constexpr Korv::EnumInstance< MrpParseStatus > MrpParseStatusInstance;
inline constexpr Korv::EnumInstance< MsrpAttrType > MsrpAttrTypeInstance;
inline constexpr Korv::EnumInstance< MvrpAttrType > MvrpAttrTypeInstance;
inline constexpr Korv::EnumInstance< MsrpListenerEvent > MsrpListenerEventInstance;

} // namespace Mrp
