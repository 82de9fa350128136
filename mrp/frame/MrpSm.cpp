// The participant's life: construction, and the one way from standby to active.
#include "mrp/frame/MrpSm.h"

#include "mrp/database/MrpDatabaseSm.h"
#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpApplicantSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"
#include "mrp/observability/MrpAttrLogSm.h"
#include "mrp/observability/RingSites.h"
#include "mrp/observability/Trace.h"
#include "mrp/platform/attrlog/SocketOutSm.h"
#include "mrp/platform/korv/Assert.h"
#include "mrp/topology/SpanningTreeMirrors.h"
#include "mrp/vocabulary/VectorFormat.h"

namespace Mrp {

namespace {

constexpr U32 tickMsecs = 100;
constexpr U32 initialMaxTicks = 60000;
constexpr U32 defaultBucketSize = 1024;

// The entity that is held, made if it is not there yet: one that exists keeps its watchers over a
// second call.
template < class E >
E & namedIs( Korv::Ptr< E > & held, char const * name ) {
   if ( !held ) {
      held = Korv::newValidPtr< E >( name );
   }
   return *held;
}

} // namespace

Korv::Ptr< MrpSm >
mrpSmFactory( Korv::Ptr< Bridging::Config const > brConfig, MrpLib * mrpLib,
              Korv::Ptr< MrpConfig const > mrpConfig, Korv::Ptr< MrpStatus > mrpStatus,
              Korv::Ptr< Stp::Status const > stpStatus,
              Korv::Ptr< Bridging::Topology::Config const > brTopoConfig,
              Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir,
              Korv::Ptr< Mirel::EntityManager > em, bool standbyMode ) {
   return Korv::newValidPtr< MrpSm >( std::move( brConfig ), mrpLib, std::move( mrpConfig ),
                                      std::move( mrpStatus ), std::move( stpStatus ),
                                      std::move( brTopoConfig ), std::move( ethPhyIntfStatusDir ),
                                      std::move( em ), standbyMode );
}

Korv::Ptr< MrpParseContext > mrpParseContextFactory( Korv::Name const & name ) {
   return Korv::newValidPtr< MrpParseContext >( name );
}

MrpSm::MrpSm( Korv::Ptr< Bridging::Config const > brConfig, MrpLib * mrpLib,
              Korv::Ptr< MrpConfig const > mrpConfig, Korv::Ptr< MrpStatus > mrpStatus,
              Korv::Ptr< Stp::Status const > stpStatus,
              Korv::Ptr< Bridging::Topology::Config const > brTopoConfig,
              Korv::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir,
              Korv::Ptr< Mirel::EntityManager > em, bool standbyMode )
   : brConfig_( std::move( brConfig ) ), mrpLib_( mrpLib ), mrpConfig_( std::move( mrpConfig ) ),
     mrpStatus_( std::move( mrpStatus ) ),
     stpStatus_( stpStatus ? new KorvStpStatus( std::move( stpStatus ), *this ) : nullptr ),
     brTopoConfig_( std::move( brTopoConfig ) ),
     ethPhyIntfStatusDir_( std::move( ethPhyIntfStatusDir ) ), em_( std::move( em ) ),
     standbyMode_( standbyMode ) {
   if ( stpStatus_ ) {
      stpStatus_->handleAppeared();
   }
   handleInitialized();
}

// In the order of who needs whom. The mirrors of the spanning tree go first, so that no change of a
// role reaches a participant that is half gone; then the interfaces, which end their LeaveAll as
// they close and so need the machines; then the machines, whose timers stand on the wheel.
MrpSm::~MrpSm() {
   stpStatus_ = nullptr;
   stpiStatus_ = {};
   mrpPamSm_ = nullptr;
   pamMan_ = nullptr;
   leaveAllSm_ = nullptr;
   registrarSm_ = nullptr;
   applicantSm_ = nullptr;
   mrpDatabaseAddSm_ = nullptr;
   mrpDatabaseDeleteSm_ = nullptr;
}

void MrpSm::handleInitialized() {
   Sornlog::log( Ring::smInitialized );
   trace( 8, "void Mrp::MrpSm::handleInitialized()" );
   Korv::assertThat( !initialized(), "!initialized()" );
   initialized_ = true;
   mrpStatus_->applicationIs( mrpLib_->application() );
   mrpLib_->mrpSmIs( this );
   doInitializePamMan();
   handleStandbyMode();
}

// The order is one of dependency: machines find the counters and the parse context when they
// start, the LeaveAll machine finds the wheel, and the interfaces of the last step find the
// LeaveAll machine.
void MrpSm::handleStandbyMode() {
   Sornlog::log( Ring::smStandbyMode );
   trace( 8, "void Mrp::MrpSm::handleStandbyMode()" );
   if ( standbyMode_ ) {
      return;
   }
   Korv::Ptr< Korv::Clock > const & clock = Korv::activityManager().clock();
   rebuildAttrIter();
   doInitializeCounters();
   namedIs( parseContext_, "MrpParseContext" ).eventsCounterIs( 0 );
   timerWheel_ = Korv::newValidPtr< Dovr::TimerWheel >( nullptr, clock, tickMsecs, initialMaxTicks,
                                                        true, defaultBucketSize );
   mrpAttrLogSm_ =
      Korv::newValidPtr< MrpAttrLogSm >( Korv::NboAttrLog::top().socketOutSm( em_->name() ) );
   mrpDatabaseDeleteSm_ = Korv::newValidPtr< MrpDatabaseDeleteSm >( this, mrpAttrLogSm_, clock );
   mrpDatabaseAddSm_ = Korv::newValidPtr< MrpDatabaseAddSm >( this, mrpAttrLogSm_, clock );
   applicantSm_ = Korv::newValidPtr< MrpApplicantSm >( this, mrpConfig_ );
   registrarSm_ = Korv::newValidPtr< MrpRegistrarSm >( this, mrpConfig_, timerWheel_ );
   leaveAllSm_ = Korv::newValidPtr< MrpLeaveAllSm >( this, mrpConfig_, timerWheel_ );
   maxAttrTypes_ = mrpNumberOfTypes( mrpLib_->application() );
   if ( mrpPamSm_->standbyMode() != standbyMode_ ) {
      mrpPamSm_->standbyModeIs( standbyMode_ );
      mrpPamSm_->handleStandbyMode();
   }
}

void MrpSm::doInitializeCounters() {
   MrpCounters & counters = namedIs( mrpCounters_, "MrpCounters" );
   MrpCounters::attributes().forEach(
      [&]( auto const & counter ) { ( counters.*counter.mutator )( 0 ); } );
}

// Attributes that stand in the tree already are walked like those made later.
void MrpSm::rebuildAttrIter() {
   MrpApplicationDatabase const * const database = applicationDatabase();
   for ( auto intf = database->attrDatabase().walk(); intf; ++intf ) {
      for ( auto type = intf.value()->intfTypeApplicant().walk(); type; ++type ) {
         MrpAttrIter * const iter = mrpAttrIterIs( MrpAttrIter::Key( intf.key(), type.key() ) );
         for ( auto attr = type.value()->mrpAttribute().walk(); attr; ++attr ) {
            iter->attributeKeyIs( attr.key(), true );
         }
      }
   }
}

} // namespace Mrp
