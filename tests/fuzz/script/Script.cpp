#include "tests/fuzz/script/Script.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

#include "tests/fuzz/script/Check.h"

#include <algorithm>

namespace Fuzz {

using namespace TestSupport;

namespace {

std::vector< std::string > const interfaces = { "Ethernet1", "Ethernet2", "Ethernet3" };
constexpr std::size_t mtu = 1500;
constexpr std::size_t frameHead = 14;
// What a script may cost, so that a fuzzer tries many instead of long ones. One that has spent it
// ends; the application no longer reacts.
constexpr std::size_t frameBytesMax = 1600;
constexpr std::size_t attributesMax = 400;
constexpr int reactionsMax = 200;
constexpr double timeMax = 30;

class Reader {
 public:
   Reader( U8 const * data, std::size_t size ) : at_( data ), left_( size ) {}

   bool empty() const { return left_ == 0; }
   U8 byte() {
      if ( left_ == 0 ) {
         return 0;
      }
      --left_;
      return *at_++;
   }
   U16 two() {
      unsigned const high = byte();
      return static_cast< U16 >( high << 8 | byte() );
   }
   Bytes bytes( std::size_t count ) {
      std::size_t const there = std::min( count, left_ );
      Bytes const taken( at_, at_ + there );
      at_ += there;
      left_ -= there;
      return taken;
   }

 private:
   U8 const * at_;
   std::size_t left_;
};

// Keys of two bytes, so that what is declared and what is received meet.
U64 streamId( U16 key ) { return 0x0011'2233'4455'0000 | key; }

class Run {
 public:
   Run( Mrp::MrpApplication application, Reader in )
      : in_( in ), application_( application ),
        participant_( application, interfaces, options( in_.byte() ) ),
        standby_( participant_.sm().standbyMode() ) {
      participant_.lib().refuse = [this]( Indication const & join ) { return refuses( join ); };
      participant_.lib().react = [this]( Indication const & told ) { react( told ); };
   }

   void toTheEnd() {
      while ( !in_.empty() && !isSpent() ) {
         U8 const step = in_.byte();
         interface_ = interfaces[( step >> 4 ) % interfaces.size()];
         act( static_cast< Step >( step & 0x0F ) );
         checkBetween();
      }
      switchOff();
   }

 private:
   static Participant::Options options( U8 flags ) {
      Participant::Options options;
      options.standby = ( flags & inStandby ) != 0;
      options.mtu = ( flags & noStatusEntries ) != 0 ? std::nullopt : std::optional< U32 >( mtu );
      return options;
   }

   bool isSpent() {
      std::size_t attributes = 0;
      for ( auto member = sm().mrpAttrIter().walk(); member; ++member ) {
         attributes += member.value()->attributeKey().size();
      }
      return frameBytes_ >= frameBytesMax || attributes > attributesMax || Korv::now() >= timeMax;
   }

   Mrp::MrpSm & sm() { return participant_.sm(); }
   Mrp::MrpLib & lib() { return participant_.lib(); }
   Pelk::IntfId intfId() const { return Pelk::IntfId( interface_ ); }
   // One of the application's types; those themselves are the low numbers.
   U8 type( U8 byte ) const {
      return static_cast< U8 >( application_ == Mrp::MSRP ? 1 + ( byte + 3 ) % 4 : 1 );
   }
   U64 key( U8 type, U16 key ) const {
      return application_ == Mrp::MVRP || type == domainType ? key : streamId( key );
   }

   void act( Step step ) {
      switch ( step ) {
      case Step::wait: participant_.advanceBy( in_.byte() * 0.05 ); break;
      case Step::mrpdu: receiveMrpdu(); break;
      case Step::frame: receive( in_.bytes( in_.two() ) ); break;
      case Step::message: receiveMessage(); break;
      case Step::declare: declare(); break;
      case Step::cleanUp: lib().mrpCleanUpIntfDatabase( intfId() ); break;
      case Step::cleanUpOne: {
         U8 const attributeType = type( in_.byte() );
         lib().mrpCleanUpIntfDatabaseAttribute( intfId(), attributeType,
                                                key( attributeType, in_.two() ) );
         break;
      }
      case Step::disable: lib().mrpInterfaceDisable( intfId() ); break;
      case Step::enable: lib().mrpInterfaceEnable( intfId() ); break;
      case Step::unplug: participant_.host().interfaceDel( intfId() ); break;
      case Step::plugIn:
         participant_.host().interfaceIs( intfId(), Pelk::EthAddr::fromNumber( 0x0200'0000'0001 ),
                                          mtu );
         break;
      case Step::configure: configure(); break;
      case Step::behave: behaviour_ = in_.byte(); break;
      case Step::leaveAll:
         if ( !standby_ ) {
            sm().mrpPamSm()->transmitAllLeaveAll( intfId() );
         }
         break;
      case Step::recycled: sm().recycledPktIs( true ); break;
      case Step::endStandby: endStandby(); break;
      }
   }

   void receive( Bytes const & frame ) {
      frameBytes_ += frame.size();
      participant_.receive( interface_, frame );
   }

   void receiveMrpdu() {
      Bytes frame;
      put( frame, groupAddress( participant_.protocol() ), 6 );
      put( frame, 0x0200'0000'0099, 6 );
      put( frame, etherType( participant_.protocol() ), 2 );
      put( frame, in_.bytes( in_.two() ) );
      receive( frame );
   }

   template < class Use >
   void forValue( U8 attributeType, U16 which, Use use ) const {
      if ( application_ == Mrp::MVRP ) {
         return use( Vlan{ which } );
      }
      switch ( attributeType ) {
      case talkerType: return use( talker( streamId( which ) ) );
      case failedType: return use( FailedTalker{ talker( streamId( which ) ) } );
      case listenerType: return use( Listener{ streamId( which ) } );
      default: return use( Domain{ static_cast< U8 >( which ), 3, 2 } );
      }
   }

   void receiveMessage() {
      U8 const attributeType = type( in_.byte() );
      U8 const flags = in_.byte();
      U16 const first = in_.two();
      std::vector< Event > events;
      std::vector< Declaration > declarations;
      for ( unsigned count = in_.byte(); count > 0; --count ) {
         U8 const byte = in_.byte();
         events.push_back( static_cast< Event >( byte % 6 ) );
         if ( application_ == Mrp::MSRP && attributeType == listenerType ) {
            declarations.push_back( static_cast< Declaration >( byte >> 6 ) );
         }
      }
      Vector vector( attributeType, {}, events, declarations );
      forValue( attributeType, first,
                [&]( auto const & value ) { vector.firstValue( wire( value ) ); } );
      if ( ( flags & 1 ) != 0 || events.empty() ) {
         vector.leaveAll();
      }
      Frame frame( participant_.protocol(), { Message( vector ) } );
      if ( ( flags & 2 ) != 0 ) {
         frame.tag( 5 );
      }
      receive( frame );
   }

   void declare() {
      U8 const attributeType = type( in_.byte() );
      U8 const event = in_.byte() % 8;
      U16 const which = in_.two();
      U8 const queued = in_.byte();
      if ( standby_ ) {
         return; // an application has nobody to talk to
      }
      std::vector< std::string > queue;
      for ( std::size_t i = 0; i < interfaces.size(); ++i ) {
         if ( ( queued >> i & 1 ) != 0 ) {
            queue.push_back( interfaces[i] );
         }
      }
      forValue( attributeType, which, [&]( auto const & value ) { participant_.load( value ); } );
      participant_.sendAttribute( interface_, attributeType, event, queue );
   }

   void configure() {
      static constexpr double times[] = { 0.6, 0, 0.05, 0.1, 1, 3, 10, 600 };
      Mrp::MrpConfig & config = participant_.config();
      U8 const which = in_.byte();
      U8 const value = in_.byte();
      double const time = times[value % std::size( times )];
      switch ( which % 7 ) {
      case 0: config.leaveTimeIs( std::min( time, longestLeaveTime ) ); break;
      case 1: config.leaveAllTimeIs( time ); break;
      case 2: config.intfLeaveTimeIs( intfId(), std::min( time, longestLeaveTime ) ); break;
      case 3: config.intfLeaveAllTimeIs( intfId(), time ); break;
      case 4: config.txLeaveAllExpiryTimeIs( std::min( time, longestLeaveTime ) ); break;
      case 5: config.mrpFloodingIs( ( value & 1 ) != 0 ); break;
      default: config.timersEnabledIs( ( value & 1 ) != 0 ); break;
      }
   }

   void endStandby() {
      if ( standby_ ) {
         standby_ = false;
         sm().standbyModeIs( false );
         sm().handleStandbyMode();
      }
   }

   bool refuses( Indication const & join ) const {
      return ( behaviour_ & 0x10 ) != 0 && ( join.key & 1 ) != 0;
   }

   // As its kind goes: it may hand the value on, end the attribute, or switch interfaces off.
   void react( Indication const & told ) {
      if ( ++reactions_ > reactionsMax ) {
         return;
      }
      switch ( behaviour_ & 0x07 ) {
      case 1: propagate( told, told.join ? joinIn : leave ); break;
      case 2: lib().mrpCleanUpIntfDatabase( Pelk::IntfId( told.interface ) ); break;
      case 3: lib().mrpInterfaceDisable( Pelk::IntfId( told.interface ) ); break;
      case 4: propagate( told, told.join ? newOne : leave ); break;
      case 5:
         lib().mrpCleanUpIntfDatabaseAttribute( Pelk::IntfId( told.interface ), told.type,
                                                told.key );
         break;
      default: break;
      }
   }

   static constexpr U8 newOne = 0, joinIn = 1, leave = 5;

   // To all other interfaces, each told on its own.
   void propagate( Indication const & told, U8 event ) {
      if ( application_ == Mrp::MVRP ) {
         lib().mvrpVlanVectorTxIs( lib().mvrpVlanVectorRx() );
      } else {
         lib().msrpTalkerAdvertiseTxIs( lib().msrpTalkerAdvertiseRx() );
         lib().msrpTalkerFailedTxIs( lib().msrpTalkerFailedRx() );
         lib().msrpListenerVectorTxIs( lib().msrpListenerVectorRx() );
         lib().msrpDomainVectorTxIs( lib().msrpDomainVectorRx() );
      }
      for ( std::string const & other : interfaces ) {
         if ( other != told.interface ) {
            participant_.sendAttribute( other, told.type, event, { other } );
         }
      }
   }

   void checkBetween() {
      check( sm().mrpRxLeaveAll().empty(), "no LeaveAll waits" );
      check( sm().mrpParsedAttribute().size() == 0, "no parsed attribute waits" );
      check( sm().mrpParsedAttributeKey().empty(), "no key waits" );
      check( sm().msrpParsedDomainKey().empty(), "no domain waits" );
      check( lib().mrpOutIntfQueue().empty(), "no interface is queued" );
      for ( SentFrame const & frame : participant_.sent() ) {
         checkSent( frame.bytes );
      }
      participant_.clear();
   }

   // What it floods is what it has received, whatever that is.
   void checkSent( Bytes const & frame ) {
      if ( participant_.config().mrpFlooding() ) {
         return;
      }
      check( frame.size() <= frameHead + mtu, "frames fit the MTU" );
      // An MVRP frame that opens a message behind one of several vectors loses the tail of what it
      // held: what a reader makes of that is not asked here.
      if ( application_ == Mrp::MVRP ) {
         return;
      }
      Decoded const said = decode( frame );
      check( said.faults.empty(), "frames are well-formed", said.text() + '\n' + hex( frame ) );
   }

   void switchOff() {
      endStandby();
      behaviour_ = 0;
      for ( std::string const & name : interfaces ) {
         lib().mrpInterfaceDisable( Pelk::IntfId( name ) );
      }
      // A shared leave machine lives until its timer fires; a commit waits for a credit.
      participant_.advanceBy( longestLeaveTime + 5 );
      check( sm().addPendingAttr().empty(), "nothing is pending addition" );
      check( sm().deletePendingAttr().empty(), "nothing is pending deletion" );
      check( sm().mrpAttrIter().empty(), "nothing is indexed" );
      check( sm().registrarSm()->leaveSm().empty(), "no shared leave machine is left" );
      check( sm().registrarSm()->explicitLeaveSm().empty(), "no explicit leave machine is left" );
      check( sm().leaveAllSm()->intfLeaveAllSm().empty(), "no LeaveAll machine is left" );
      check( lib().mrpTxPacketContext().empty(), "no first frame is open" );
      check( lib().mrpTxSecondPacketContext().empty(), "no second frame is open" );
      check( sm().mrpPamSm()->mrpIntfPamSm().empty(), "no packet access is left" );
   }

   static constexpr double longestLeaveTime = 3;

   Reader in_;
   Mrp::MrpApplication application_;
   Participant participant_;
   bool standby_;
   U8 behaviour_ = 0;
   std::size_t frameBytes_ = 0;
   int reactions_ = 0;
   std::string interface_ = interfaces.front();
};

} // namespace

void runScript( Mrp::MrpApplication application, U8 const * data, std::size_t size ) {
   Run( application, Reader( data, size ) ).toTheEnd();
}

} // namespace Fuzz
