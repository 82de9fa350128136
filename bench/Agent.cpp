#include "bench/Agent.h"

#include "mrp/topology/MrpConfig.h"

#include <algorithm>
#include <string>

namespace Bench {

namespace {

Pelk::EthAddr address( U64 number ) { return Pelk::EthAddr::fromNumber( number ); }

} // namespace

Agent::Agent( Mrp::MrpApplication application, std::size_t interfaces, Korv::Seconds leaveAllTime )
   : lib_( Mrp::mrpLibFactory() ), status_( Mrp::mrpStatusFactory( "status" ) ) {
   auto const protocol =
      application == Mrp::MSRP ? TestSupport::Protocol::msrp : TestSupport::Protocol::mvrp;
   for ( std::size_t i = 0; i < interfaces; ++i ) {
      intfIds_.emplace_back( "Ethernet" + std::to_string( i + 1 ) );
      host_.interfaceIs( intfIds_.back(), address( 0x0200'0000'0001 + i ), 1500 );
   }
   lib_->applicationIs( application );
   lib_->applicationMacAddrIs( address( TestSupport::groupAddress( protocol ) ) );
   lib_->applicationEtypeIs( TestSupport::etherType( protocol ) );
   auto const config = Mrp::mrpConfigFactory( "config" );
   config->leaveAllTimeIs( leaveAllTime );
   sm_ = Mrp::mrpSmFactory( host_.brConfig(), lib_.ptr(), config, status_, host_.stpStatus(),
                            host_.brTopoConfig(), host_.ethPhyIntfStatusDir(), host_.em(), false );
   mounts_.statusIs( status_ );
   mounts_.configIs( config );
   mounts_.countersIs( sm_->mrpCounters() );
   mounts_.parseContextIs( sm_->parseContext() );
   for ( Pelk::IntfId const & intfId : intfIds_ ) {
      lib_->mrpInterfaceEnable( intfId );
      pams_.push_back( host_.pam( intfId ) );
   }
}

Agent::~Agent() = default;

void Agent::declareVlan( Korv::U16 vlanId ) {
   lib_->mvrpVlanVectorTxIs( Mrp::MvrpVlanAttribute( vlanId ) );
   lib_->mrpOutIntfQueueEnq( intfIds_.front() );
   lib_->mrpSendAttribute( Mrp::MrpParameters( intfIds_.front(), TestSupport::vlanType,
                                               static_cast< Korv::U8 >( Mrp::joinInEvent ) ) );
}

template < class Wanted >
std::size_t Agent::count( Korv::U8 attributeType, Wanted wanted ) const {
   std::size_t found = 0;
   auto const * const database = status_->application( lib_->application() );
   for ( Pelk::IntfId const & intfId : intfIds_ ) {
      auto const * const intf = database ? database->attrDatabase( intfId ) : nullptr;
      auto const * const type = intf ? intf->intfTypeApplicant( attributeType ) : nullptr;
      if ( !type ) {
         continue;
      }
      for ( auto member = type->mrpAttribute().walk(); member; ++member ) {
         found += wanted( *member.value() ) ? 1u : 0u;
      }
   }
   return found;
}

std::size_t Agent::committed( Korv::U8 attributeType ) const {
   return count( attributeType, []( auto const & ) { return true; } );
}
std::size_t Agent::registered( Korv::U8 attributeType ) const {
   return count( attributeType, []( auto const & attribute ) {
      return attribute.registrarState() == Mrp::mrpIn;
   } );
}

Bytes vlansFrame( TestSupport::Event event ) {
   return TestSupport::mvrpFrame(
      TestSupport::vlans( 1, std::vector< TestSupport::Event >( allVlans, event ) ) );
}

Bytes vlanLeaveAllFrame() { return TestSupport::mvrpFrame( TestSupport::vlanLeaveAll() ); }

std::vector< U64 > scatteredStreams( std::size_t count ) {
   std::vector< U64 > streams;
   U64 state = 0;
   while ( streams.size() < count ) {
      // splitmix64: no value comes twice.
      U64 mixed = state += 0x9E37'79B9'7F4A'7C15;
      mixed = ( mixed ^ ( mixed >> 30 ) ) * 0xBF58'476D'1CE4'E5B9;
      mixed = ( mixed ^ ( mixed >> 27 ) ) * 0x94D0'49BB'1331'11EB;
      streams.push_back( mixed ^ ( mixed >> 31 ) );
   }
   return streams;
}

std::vector< Bytes > talkerFrames( std::span< U64 const > streams, TestSupport::Event event ) {
   constexpr std::size_t perFrame = 53; // of 28 bytes each
   std::vector< Bytes > frames;
   while ( !streams.empty() ) {
      std::size_t const count = std::min( perFrame, streams.size() );
      std::vector< TestSupport::Vector > vectors;
      for ( U64 const stream : streams.first( count ) ) {
         vectors.push_back( TestSupport::talkers( stream, { event } ) );
      }
      frames.push_back( TestSupport::msrpFrame( TestSupport::Message( vectors ) ) );
      streams = streams.subspan( count );
   }
   return frames;
}

} // namespace Bench
