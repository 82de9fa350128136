#include "tests/support/Participant.h"

#include "mrp/platform/pelk/EthAddr.h"

#include <cstdlib>
#include <sstream>

namespace TestSupport {

namespace {

constexpr char const * noRandomization = "DISABLE_LEAVE_ALL_RANDOMIZATION";

Pelk::EthAddr address( U64 number ) { return Pelk::EthAddr::fromNumber( number ); }

} // namespace

Bytes valueOf( Mrp::MrpAttrDatabase const & entry ) {
   Bytes bytes;
   auto const & queue = entry.attributeValue();
   for ( U32 i = 0; i < queue.count(); ++i ) {
      bytes.push_back( queue.at( queue.position( i ) ) );
   }
   return bytes;
}

std::string AttributeState::states() const {
   return Mrp::stringValue( applicant ) + ' ' + Mrp::stringValue( registrar );
}

Participant::Participant( Mrp::MrpApplication application,
                          std::vector< std::string > const & interfaces, Options const & options )
   : ownActivity_( options.activity ? nullptr : std::make_unique< Memory::VirtualActivity >() ),
     activity_( options.activity ? options.activity : ownActivity_.get() ),
     host_( std::make_unique< Memory::Host >() ),
     protocol_( application == Mrp::MSRP ? Protocol::msrp : Protocol::mvrp ),
     lib_( new RecordingLib ), config_( Mrp::mrpConfigFactory( "MrpConfig" ) ),
     status_( Mrp::mrpStatusFactory( "MrpStatus" ) ) {
   if ( options.randomLeaveAll ) {
      unsetenv( noRandomization );
   } else {
      setenv( noRandomization, "1", 1 );
   }
   host_->brConfig()->bridgeMacAddrIs( address( 0x0200'0000'00ff ) );
   U64 port = 0x0200'0000'0001;
   for ( std::string const & name : interfaces ) {
      host_->interfaceIs( Pelk::IntfId( name ), address( port++ ), options.mtu );
   }
   host_->onTransmit( [this]( Pelk::IntfId const & intfId, Memory::FrameBytes frame ) {
      if ( lib_->recording || onSent ) {
         SentFrame const sent{ Korv::now(), intfId.stringValue(),
                               Bytes( frame.begin(), frame.end() ) };
         if ( lib_->recording ) {
            sent_.push_back( sent );
         }
         if ( onSent ) {
            onSent( sent );
         }
      }
   } );
   lib_->applicationIs( application );
   lib_->applicationMacAddrIs( address( groupAddress( protocol_ ) ) );
   lib_->applicationEtypeIs( etherType( protocol_ ) );
   if ( options.configure ) {
      options.configure( *config_ );
   }
   sm_ = Mrp::mrpSmFactory( host_->brConfig(), lib_.ptr(), config_, status_, host_->stpStatus(),
                            host_->brTopoConfig(), host_->ethPhyIntfStatusDir(), host_->em(),
                            options.standby );
   if ( options.enabled ) {
      for ( std::string const & name : interfaces ) {
         lib_->mrpInterfaceEnable( Pelk::IntfId( name ) );
      }
   }
}

// What still stands on the host and the clock goes first.
Participant::~Participant() {
   host_->onTransmit( {} );
   sm_ = nullptr;
}

bool Participant::receive( std::string const & interface, Bytes const & frame ) {
   Memory::Pam * const pam = host_->pam( Pelk::IntfId( interface ) );
   return pam && pam->deliverPastFilter( frame );
}

bool Participant::isIdle() const {
   return sm_->mrpRxLeaveAll().empty() && sm_->mrpParsedAttribute().size() == 0 &&
          sm_->mrpParsedAttributeKey().empty() && sm_->msrpParsedDomainKey().empty() &&
          lib_->mrpOutIntfQueue().empty();
}

void Participant::endStandby() {
   if ( sm_->standbyMode() ) {
      sm_->standbyModeIs( false );
      sm_->handleStandbyMode();
   }
}

void Participant::settingIs( unsigned which, Pelk::IntfId intfId, double leaveTime,
                             double leaveAllTime, bool on ) {
   switch ( which ) {
   case 0: config_->leaveTimeIs( leaveTime ); break;
   case 1: config_->leaveAllTimeIs( leaveAllTime ); break;
   case 2: config_->intfLeaveTimeIs( intfId, leaveTime ); break;
   case 3: config_->intfLeaveAllTimeIs( intfId, leaveAllTime ); break;
   case 4: config_->txLeaveAllExpiryTimeIs( leaveTime ); break;
   case 5: config_->mrpFloodingIs( on ); break;
   default: config_->timersEnabledIs( on ); break;
   }
}

std::vector< std::string > Participant::said() const {
   std::vector< std::string > all;
   for ( SentFrame const & frame : sent_ ) {
      all.push_back( frame.interface + ": " + says( frame.bytes ) );
   }
   return all;
}

std::vector< std::string > Participant::indications() const {
   std::vector< std::string > all;
   for ( Indication const & indication : lib_->indications ) {
      all.push_back( indication.text( protocol_ ) );
   }
   return all;
}

void Participant::clear() {
   sent_.clear();
   lib_->indications.clear();
   if ( sm_->mrpCounters() ) {
      moved();
   }
}

void Participant::sendAttribute( std::string const & interface, U8 type, unsigned event,
                                 std::vector< std::string > const & queued ) {
   for ( std::string const & name : queued ) {
      lib_->mrpOutIntfQueueEnq( Pelk::IntfId( name ) );
   }
   lib_->mrpSendAttribute(
      Mrp::MrpParameters( Pelk::IntfId( interface ), type, static_cast< U8 >( event ) ) );
}

std::optional< AttributeState > Participant::attribute( std::string const & interface, U8 type,
                                                        U64 key ) const {
   Pelk::IntfId const intfId( interface );
   auto const * const found = sm_->mrpGetAttrFromDatabase( intfId, type, key, true );
   if ( !found ) {
      return std::nullopt;
   }
   return AttributeState{ found->applicantState(), found->registrarState(), valueOf( *found ),
                          sm_->addPendingAttr().isMember( Mrp::MrpAttribute( intfId, type, key ) ),
                          sm_->mrpGetAttrFromDatabase( intfId, type, key, false ) != nullptr };
}

std::string Participant::states( std::string const & interface, U8 type, U64 key ) const {
   auto const found = attribute( interface, type, key );
   return found ? found->states() : "none";
}

void Participant::attributeIs( std::string const & interface, U8 type, U64 key, Bytes const & value,
                               Mrp::MrpApplicantState applicant,
                               Mrp::MrpRegistrarState registrar ) {
   Pelk::IntfId const intfId( interface );
   auto const entry = sm_->createEntryInDatabase( intfId, type, key );
   entry->attributeValueDelAll();
   for ( U8 const byte : value ) {
      entry->attributeValueEnq( byte );
   }
   entry->applicantStateIs( applicant );
   entry->registrarStateIs( registrar );
   sm_->addToAttrIter( intfId, type, key );
}

std::string Participant::moved() {
   std::ostringstream out;
   Korv::forEachScalar( counters(), [&]( std::string const & counter, U64 value ) {
      U64 const by = value - std::exchange( counted_[counter], value );
      if ( by != 0 && counter != "numOfPktsTransmitted" ) {
         out << ( out.tellp() > 0 ? " " : "" ) << counter << '=' << by;
      }
   } );
   return out.str();
}

} // namespace TestSupport
