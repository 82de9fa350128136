#include "command/run/RunAgent.h"

#include "command/report/Metrics.h"
#include "command/run/PropagatingLib.h"

namespace Command {

namespace {

Korv::Ptr< DeclaringLib > libOf( RunSettings const & settings, Mirel::HostEntities const & host,
                                 DeclaringLib::Tell tell ) {
   if ( settings.application == Mrp::MSRP ) {
      return Korv::Ptr< DeclaringLib >( new StreamLib( std::move( tell ), settings.streams ) );
   }
   Korv::Ptr< PropagatingLib > const lib( new PropagatingLib( std::move( tell ), settings.vlans ) );
   if ( settings.bridge ) {
      lib->bridgeIs( host.stpStatus() );
   }
   return Korv::Ptr< DeclaringLib >( lib.ptr() );
}

Korv::Ptr< Mrp::MrpConfig > configOf( RunSettings const & settings ) {
   Korv::Ptr< Mrp::MrpConfig > const config = Mrp::mrpConfigFactory( "MrpConfig" );
   config->leaveTimeIs( settings.leaveTime );
   config->leaveAllTimeIs( settings.leaveAllTime );
   return config;
}

} // namespace

RunAgent::RunAgent( RunSettings const & settings, Mirel::HostEntities const & host,
                    std::ostream & out, std::function< void() > outputClosed )
   : lines_( settings.application, settings.json, out, std::move( outputClosed ) ),
     config_( configOf( settings ) ),
     lib_( libOf( settings, host, [this]( Happening const & indication ) {
        lines_.writeIndication( indication );
     } ) ) {
   lib_->applicationIs( settings.application );
   lib_->applicationMacAddrIs( settings.address );
   lib_->applicationEtypeIs( settings.ethertype );
   sm_ = Mrp::mrpSmFactory( host.brConfig(), lib_.ptr(), config_,
                            Mrp::mrpStatusFactory( "MrpStatus" ), host.stpStatus(),
                            host.brTopoConfig(), host.ethPhyIntfStatusDir(), host.em(), false );
   lib_->start( settings.interfaces );
}

void RunAgent::stop() {
   lib_->stop();
   lines_.writeRest();
}

Mrp::AttrLogMounts::Adapters RunAgent::mirror( Korv::NboAttrLog::Output & output ) const {
   Mrp::AttrLogMounts mounts;
   mounts.statusIs( sm_->mrpStatus() );
   mounts.configIs( config_ );
   mounts.countersIs( sm_->mrpCounters() );
   mounts.parseContextIs( sm_->parseContext() );
   return mounts.mount( output );
}

std::string RunAgent::metrics() const {
   return metricsText( sm_->mrpLib()->application(), *sm_->mrpStatus(), *sm_->mrpCounters(),
                       *config_ );
}

} // namespace Command
