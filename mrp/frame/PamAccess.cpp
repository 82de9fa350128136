// Packet access: the filter that selects the application's frames, the directories, and the
// platform's manager that keeps one Pelk::Pam per wanted interface in the collection.
#include "mrp/frame/MrpPamSm.h"
#include "mrp/frame/MrpSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/platform/korv/Format.h"
#include "mrp/platform/korv/RangeException.h"
#include "mrp/platform/mirel/Mount.h"
#include "mrp/platform/pelk/NetNs.h"
#include "mrp/platform/pelk/PktManager.h"
#include "mrp/platform/pelk/SockFilterProgram.h"

namespace Mrp {

namespace {

constexpr U32 maxPkts = 10000;
constexpr U32 txRetries = 3;
constexpr U32 rxQueueFrames = 10000;
constexpr std::size_t maxNamespaceName = 150;

// A frame passes if its destination is the application's address and its type, untagged or behind
// one 0x8100 tag, is the application's. The four operands that are 0 here and lead to the reject
// are filled in by the first participant of the process; a later one gets the program as it then
// stands.
enum FilterOperand : U32 { dmacLowerAt = 1, dmacUpperAt = 3, ethTypeAt = 5, taggedTypeAt = 8 };

Pelk::SockFilterInstruction filter[] = {
   { 0x20, 0, 0, 2 },      //  0 load 32 bits of the destination
   { 0x15, 0, 8, 0 },      //  1 dmacLower, else reject
   { 0x28, 0, 0, 0 },      //  2 load its first 16 bits
   { 0x15, 0, 6, 0 },      //  3 dmacUpper, else reject
   { 0x28, 0, 0, 12 },     //  4 load the type
   { 0x15, 3, 0, 0 },      //  5 ethType: accept
   { 0x15, 0, 3, 0x8100 }, //  6 a tag, else reject
   { 0x28, 0, 0, 16 },     //  7 load the type behind it
   { 0x15, 0, 1, 0 },      //  8 ethType, else reject
   { 0x06, 0, 0, 0xFFFF }, //  9 accept
   { 0x06, 0, 0, 0 },      // 10 reject
};
bool filterIsFilled = false;

// The program, filled in for the application if no participant has done so before.
Pelk::SockFilterProgram filterFor( MrpLib const & lib ) {
   U64 const address = lib.applicationMacAddr().number();
   U32 const dmacUpper = static_cast< U32 >( address >> 32 );
   U32 const dmacLower = static_cast< U32 >( address );
   U16 const ethType = lib.applicationEtype();
   trace( 8, "MrpSm::PamManEnable dmacUpper ", Korv::Hex{ dmacUpper }, " dmacLower ",
          Korv::Hex{ dmacLower }, " ethType ", Korv::Hex{ ethType } );
   if ( !filterIsFilled ) {
      filter[dmacLowerAt].k = dmacLower;
      filter[dmacUpperAt].k = dmacUpper;
      filter[ethTypeAt].k = ethType;
      filter[taggedTypeAt].k = ethType;
      filterIsFilled = true;
   }
   return Pelk::SockFilterProgram( std::size( filter ), filter );
}

std::string checkedNamespaceName() {
   std::string const name = Pelk::DEFAULT_NS;
   if ( name.size() > maxNamespaceName ) {
      Korv::throwRangeException( "NamespaceName::bytes > 150 not allowed" );
   }
   return name;
}

// Null for an entity that is missing or of another class. An agent that does not provide it is at
// fault, and nothing here looks for that.
template < class E >
E * as( Korv::Entity * entity ) {
   return dynamic_cast< E * >( entity );
}

// The network of the namespace.
Korv::Ptr< KernelNetInfo::Status >
mountKernelStatus( Korv::Ptr< Mirel::EntityManager > const & em ) {
   auto const mount = Korv::newValidPtr< KorvHudra::Mount >( em );
   mount->handleInitialized();
   Korv::String8 const path = Korv::format( "kni/ns/%s/status", checkedNamespaceName().c_str() );
   KorvHudra::MountInfo info;
   info.mode = 3;
   mount->doMount( path, "KernelNetInfo::Status", info );
   return as< KernelNetInfo::Status >( mount->getEntity( path ) );
}

} // namespace

void MrpSm::doInitializePamMan() {
   Sornlog::log( Ring::smInitializePamMan );
   trace( 8, "void Mrp::MrpSm::doInitializePamMan()" );
   Pelk::globalPktManager().maxPktsIs( maxPkts );
   Pelk::SockFilterProgram const filterProgram = filterFor( *mrpLib_ );

   allIntfStatusDir_ =
      as< Interface::AllIntfStatusDir >( em_->getEntity( "interface/status/all" ) );
   allIntfStatusLocalDir_ = as< Interface::AllIntfStatusLocalDir >(
      em_->getEntity( Cell::path( "interface/status/local" ) ) );
   Korv::Ptr< KernelNetInfo::Status > const kernelStatus = mountKernelStatus( em_ );

   // The names are the same for MVRP.
   deviceIntfStatusDir_ =
      Korv::newValidPtr< Interface::DeviceIntfStatusDir >( "deviceIntfStatusDirMsrp" );
   intfStatusManagerRoot_ = Korv::newValidPtr< Interface::NetNsIntfStatusManagerRoot >(
      nullptr, allIntfStatusDir_, allIntfStatusLocalDir_, false );
   intfStatusManagerRoot_->intfStatusManagerIs( nullptr, deviceIntfStatusDir_, kernelStatus,
                                                checkedNamespaceName() );
   desiredIntfDir_ = Korv::newValidPtr< Interface::PamDesiredIntfDir >( "desiredIntfDirMsrp" );
   pamCollection_ = Korv::newValidPtr< Interface::EthDevPamCollection >( "pamCollectionMsrp" );
   pamMan_ = Korv::newValidPtr< Interface::EthDevPamManager >( desiredIntfDir_, pamCollection_,
                                                               deviceIntfStatusDir_ );
   pamMan_->txRetriesIs( txRetries );
   pamMan_->destinationIs( mrpLib_->applicationMacAddr() );
   pamMan_->filterProgramIs( filterProgram );
   pamMan_->rxQueueFramesIs( rxQueueFrames );
   pamMan_->perIntfSocketIs( true );
   pamMan_->enabledIs( true );

   // The collection is new and empty: interfaces appear as the agent enables them.
   mrpPamSm_ = Korv::newValidPtr< MrpPamSm >( pamCollection_, standbyMode_, this );
}

Pelk::Pam * MrpSm::pam( Pelk::IntfId intfId ) const { return pamCollection_->intfPam( intfId ); }

Pelk::EthAddr MrpSm::sourceAddress( Pelk::IntfId intfId ) const {
   auto const * const port = ethPhyIntfStatusDir_->intfStatus( intfId );
   return port ? port->addr() : brConfig_->bridgeMacAddr();
}

} // namespace Mrp
