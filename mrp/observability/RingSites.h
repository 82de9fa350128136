// The places that write to the ring buffer, whatever the trace levels are. Each uses the level of
// the text trace beside it; the function that writes is named where the message does not tell.
#pragma once

#include "mrp/platform/sornlog/Sornlog.h"

namespace Mrp::Ring {

using Sornlog::Site;

// Receiving. handleMrpdu, parseMrpdu, parseVectorAttribute; the attribute type's is shared by
// parseMsrpVector and parseMvrpVector.
inline constexpr Site incorrectDmac{ 2, "Received frame with incorrect DMAC -- ignoring", "" };
inline constexpr Site incorrectEtherType{ 4, "Received frame with incorrect EtherType -- ignoring",
                                          "" };
inline constexpr Site futureVersion{
   4, "MRPDU protocol version % is greater than the current supported version ", "cc" };
inline constexpr Site applicationNotSupported{ 4, "Application % not supported", "i" };
inline constexpr Site unidentifiedAttributeType{ 4,
                                                 " ######## Unidentified attribute type = ", "c" };
inline constexpr Site leaveAllEventIsTrue{ 8, "leaveAllEvent is True for ", "p" };
// handleRegistrarEvent: interface, type, event.
inline constexpr Site joinDiscarded{
   4, "Join was discarded by MSRP, interface: %, attrType: %, attrEvent: ", "pcc" };

// Sending. mrpSendAttributeIntf: interface, type, event, newEvent.
inline constexpr Site packetAllocationFailed{ 4, "Packet allocation failed for ", "pccb" };
inline constexpr Site applicationNotSent{ 8, " Not supported Application:  ", "i" };
// mrpCreateNewMsrpHeader, mrpCreateNewMvrpHeader.
inline constexpr Site invalidAttributeToEncode{ 8, " Invalid Attribute % to be encoded", "c" };
// mrpSizeOfMsrpAttribute, mrpSizeOfMvrpAttribute; mrpSizeOfAttribute.
inline constexpr Site invalidAttributeType{ 8, " Invalid attribute type: ", "c" };
inline constexpr Site invalidApplicationType{ 8, " Invalid application type: ", "i" };

// Packet access, with the interface.
inline constexpr Site pamFloodMsrpdu{ 8, "MrpPamSm::floodMsrpdu()", "p" };
inline constexpr Site pamHandlePam{ 8, "MrpPamSm::handlePam()", "p" };
inline constexpr Site pamTransmitAllLeaveAll{ 8, "MrpPamSm::transmitAllLeaveAll()", "p" };
inline constexpr Site intfPamDoClose{ 8, "MrpIntfPamSm::doClose()", "p" };
inline constexpr Site intfPamStandbyMode{ 8, "MrpIntfPamSm::handleStandbyMode()", "p" };
inline constexpr Site intfPamInitialized{ 8, "MrpIntfPamSm::handleInitialized()", "p" };
inline constexpr Site intfPamTransmitAllLeaveAll{ 8, "MrpIntfPamSm::transmitAllLeaveAll()", "p" };
inline constexpr Site intfPamHandleMrpdu{ 8, "MrpIntfPamSm::handleMrpdu()", "p" };

// Spanning tree: names of port, tree and instance.
inline constexpr Site handleRole{ 8, "MrpSm::handleRole()", "ppp" };
inline constexpr Site flushOccurred{ 8, "Flush! event occurred", "" };
inline constexpr Site redeclareOccurred{ 8, "Re-declare! event occurred", "" };

// Starting.
inline constexpr Site smInitialized{ 8, "void Mrp::MrpSm::handleInitialized()", "" };
inline constexpr Site smInitializePamMan{ 8, "void Mrp::MrpSm::doInitializePamMan()", "" };
inline constexpr Site smStandbyMode{ 8, "void Mrp::MrpSm::handleStandbyMode()", "" };
inline constexpr Site pamInitialized{ 8, "void Mrp::MrpPamSm::handleInitialized()", "" };
inline constexpr Site pamStandbyMode{ 8, "void Mrp::MrpPamSm::handleStandbyMode()", "" };
inline constexpr Site databaseAddInitialized{ 8, "void Mrp::MrpDatabaseAddSm::handleInitialized()",
                                              "" };
inline constexpr Site databaseDeleteInitialized{
   8, "void Mrp::MrpDatabaseDeleteSm::handleInitialized()", "" };

// The mirror stream's back-pressure: errno; usage and threshold.
inline constexpr Site ioctlFailed{ 3, "ioctl failed with ", "i" };
inline constexpr Site txBufferAboveThreshold{ 3, "Tx Buffer usage: % is above threshold: ", "ii" };

// All of them, for whoever wants to look at each.
inline constexpr auto all = Sornlog::siteTable(
   incorrectDmac, incorrectEtherType, futureVersion, applicationNotSupported,
   unidentifiedAttributeType, leaveAllEventIsTrue, joinDiscarded, packetAllocationFailed,
   applicationNotSent, invalidAttributeToEncode, invalidAttributeType, invalidApplicationType,
   pamFloodMsrpdu, pamHandlePam, pamTransmitAllLeaveAll, intfPamDoClose, intfPamStandbyMode,
   intfPamInitialized, intfPamTransmitAllLeaveAll, intfPamHandleMrpdu, handleRole, flushOccurred,
   redeclareOccurred, smInitialized, smInitializePamMan, smStandbyMode, pamInitialized,
   pamStandbyMode, databaseAddInitialized, databaseDeleteInitialized, ioctlFailed,
   txBufferAboveThreshold );

} // namespace Mrp::Ring
