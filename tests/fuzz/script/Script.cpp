#include "tests/fuzz/script/Script.h"

#include "mrp/frame/MrpPamSm.h"
#include "mrp/machines/MrpLeaveAllSm.h"
#include "mrp/machines/MrpRegistrarSm.h"

#include "tests/fuzz/script/Check.h"
#include "tests/support/Occasions.h"

#include <span>

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

// Taken from the front. Bytes that are missing count as 0.
class Input {
 public:
   explicit Input( std::span< U8 const > bytes ) : bytes_( bytes ) {}

   bool empty() const { return bytes_.empty(); }
   U8 byte() { return empty() ? U8{ 0 } : bytes( 1 )[0]; }
   U16 two() {
      unsigned const high = byte();
      return static_cast< U16 >( high << 8 | byte() );
   }
   Bytes bytes( std::size_t count ) {
      auto const front = bytes_.first( std::min( count, bytes_.size() ) );
      bytes_ = bytes_.subspan( front.size() );
      return Bytes( front.begin(), front.end() );
   }

 private:
   std::span< U8 const > bytes_;
};

class Run {
 public:
   Run( Mrp::MrpApplication application, Input in )
      : in_( in ), participant_( application, interfaces, options( in_.byte() ) ) {
      lib().refuse = [this]( Indication const & join ) {
         return ( behaviour_ & 0x10 ) != 0 && ( join.key & 1 ) != 0;
      };
      lib().react = [this]( Indication const & told ) { react( told ); };
   }

   void toTheEnd() {
      while ( !in_.empty() && !isSpent() ) {
         U8 const step = in_.byte();
         intfId_ = Pelk::IntfId( interfaces[( step >> 4 ) % interfaces.size()] );
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
   RecordingLib & lib() { return participant_.lib(); }
   bool isMsrp() const { return participant_.protocol() == Protocol::msrp; }
   // One of the application's types; those themselves are the low numbers.
   U8 type() {
      U8 const byte = in_.byte();
      return static_cast< U8 >( isMsrp() ? 1 + ( byte + 3 ) % 4 : 1 );
   }
   // Of two bytes, so that what is declared and what is received meet.
   U64 key( U8 type ) {
      bool const isStream = wireKind( participant_.protocol(), type ).hasStream();
      return ( isStream ? 0x0011'2233'4455'0000 : 0 ) | in_.two();
   }

   void act( Step step ) {
      switch ( step ) {
      case Step::wait: participant_.advanceBy( in_.byte() * 0.05 ); break;
      case Step::mrpdu: receiveMrpdu(); break;
      case Step::frame: receive( in_.bytes( in_.two() ) ); break;
      case Step::message: receiveMessage(); break;
      case Step::declare: declare(); break;
      case Step::cleanUp: lib().mrpCleanUpIntfDatabase( intfId_ ); break;
      case Step::cleanUpOne: {
         U8 const attributeType = type();
         lib().mrpCleanUpIntfDatabaseAttribute( intfId_, attributeType, key( attributeType ) );
         break;
      }
      case Step::disable: lib().mrpInterfaceDisable( intfId_ ); break;
      case Step::enable: lib().mrpInterfaceEnable( intfId_ ); break;
      case Step::unplug: participant_.host().interfaceDel( intfId_ ); break;
      case Step::plugIn:
         participant_.host().interfaceIs( intfId_, Pelk::EthAddr::fromNumber( 0x0200'0000'0001 ),
                                          mtu );
         break;
      case Step::configure: {
         static constexpr double times[] = { 0.6, 0, 0.05, 0.1, 1, 3, 10, 600 };
         U8 const which = in_.byte();
         U8 const value = in_.byte();
         double const time = times[value % std::size( times )];
         participant_.settingIs( which % 7, intfId_, std::min( time, longestLeaveTime ), time,
                                 ( value & 1 ) != 0 );
         break;
      }
      case Step::behave: behaviour_ = in_.byte(); break;
      case Step::leaveAll:
         if ( !sm().standbyMode() ) {
            sm().mrpPamSm()->transmitAllLeaveAll( intfId_ );
         }
         break;
      case Step::recycled: sm().recycledPktIs( true ); break;
      case Step::endStandby: participant_.endStandby(); break;
      }
   }

   void receive( Bytes const & frame ) {
      frameBytes_ += frame.size();
      participant_.receive( intfId_.stringValue(), frame );
   }

   void receiveMrpdu() {
      Bytes frame = Frame( participant_.protocol(), {} );
      frame.resize( frameHead );
      put( frame, in_.bytes( in_.two() ) );
      receive( frame );
   }

   void receiveMessage() {
      U8 const attributeType = type();
      WireKind const & kind = wireKind( participant_.protocol(), attributeType );
      U8 const flags = in_.byte();
      Bytes first = storedValue( participant_.protocol(), attributeType, key( attributeType ) );
      first.resize( kind.size );
      std::vector< Event > events;
      std::vector< Declaration > declarations;
      for ( unsigned count = in_.byte(); count > 0; --count ) {
         U8 const byte = in_.byte();
         events.push_back( static_cast< Event >( byte % 6 ) );
         if ( kind.declares ) {
            declarations.push_back( static_cast< Declaration >( byte >> 6 ) );
         }
      }
      Vector vector( attributeType, first, events, declarations );
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
      U8 const attributeType = type();
      U8 const event = in_.byte() % 8;
      U64 const which = key( attributeType );
      U8 const queued = in_.byte();
      if ( sm().standbyMode() ) {
         return; // an application has nobody to talk to
      }
      std::vector< std::string > queue;
      for ( std::size_t i = 0; i < interfaces.size(); ++i ) {
         if ( ( queued >> i & 1 ) != 0 ) {
            queue.push_back( interfaces[i] );
         }
      }
      declaredType_ = attributeType;
      declaredKey_ = which;
      lib().txValueIs( attributeType,
                       storedValue( participant_.protocol(), attributeType, which ) );
      participant_.sendAttribute( intfId_.stringValue(), attributeType, event, queue );
   }

   // What has no attribute of its own stands for the one that was declared last.
   void happens( Occasion occasion, std::string const & interface, U8 type, U64 key ) {
      static constexpr U8 flags[] = { 0x20, 0x40, 0x80, 0x80, 0x08, 0x08 };
      if ( ( behaviour_ & flags[static_cast< std::size_t >( occasion )] ) == 0 ) {
         return;
      }
      if ( type == 0 ) {
         type = declaredType_;
         key = declaredKey_;
      }
      react( { .join = true,
               .interface = interface.empty() ? intfId_.stringValue() : interface,
               .type = type,
               .key = key,
               .value = storedValue( participant_.protocol(), type, key ) } );
   }

   // As its kind goes: it may hand the value on, end the attribute, declare and withdraw it, or
   // switch interfaces off.
   void react( Indication const & told ) {
      if ( sm().standbyMode() || ++reactions_ > reactionsMax ) {
         return;
      }
      Pelk::IntfId const intfId( told.interface );
      switch ( behaviour_ & 0x07 ) {
      case 1: propagate( told, told.join ? JoinIn : Lv ); break;
      case 2: lib().mrpCleanUpIntfDatabase( intfId ); break;
      case 3: lib().mrpInterfaceDisable( intfId ); break;
      case 4: propagate( told, told.join ? New : Lv ); break;
      case 5: lib().mrpCleanUpIntfDatabaseAttribute( intfId, told.type, told.key ); break;
      case 6:
         lib().txValueIs( told.type, told.value );
         participant_.sendAttribute( told.interface, told.type, reactions_ % 2 == 0 ? Lv : JoinIn,
                                     { told.interface } );
         break;
      case 7:
         lib().mrpInterfaceDisable( intfId );
         lib().mrpInterfaceEnable( intfId );
         break;
      default: break;
      }
   }

   // To all other interfaces, each told on its own.
   void propagate( Indication const & told, Event event ) {
      lib().txValueIs( told.type, told.value );
      for ( std::string const & other : interfaces ) {
         if ( other != told.interface ) {
            participant_.sendAttribute( other, told.type, event, { other } );
         }
      }
   }

   void checkBetween() {
      check( participant_.isIdle(), "nothing of a frame is left" );
      for ( SentFrame const & frame : participant_.sent() ) {
         checkSent( frame.bytes );
      }
      participant_.clear();
   }

   // What it floods is what it has received, whatever that is. An MVRP frame that opens a message
   // behind one of several vectors loses the tail of what it held: what a reader makes of that is
   // not asked here.
   void checkSent( Bytes const & frame ) {
      if ( participant_.config().mrpFlooding() ) {
         return;
      }
      check( frame.size() <= frameHead + mtu, "frames fit the MTU" );
      // A frame that is sent while it is announced says nothing.
      check( !isMsrp() || frame.size() == frameHead + 3 || decode( frame ).faults.empty(),
             "frames are well-formed", hex( frame ) );
   }

   void switchOff() {
      participant_.endStandby();
      behaviour_ = 0;
      for ( std::string const & name : interfaces ) {
         lib().mrpInterfaceDisable( Pelk::IntfId( name ) );
      }
      // A shared leave machine lives until its timer fires; a commit waits for a credit.
      participant_.advanceBy( longestLeaveTime + 5 );
      auto const gone = []( char const * what, auto const & collection ) {
         check( collection.empty(), what );
      };
      gone( "nothing is pending addition", sm().addPendingAttr() );
      gone( "nothing is pending deletion", sm().deletePendingAttr() );
      gone( "nothing is indexed", sm().mrpAttrIter() );
      gone( "no shared leave machine is left", sm().registrarSm()->leaveSm() );
      gone( "no explicit leave machine is left", sm().registrarSm()->explicitLeaveSm() );
      gone( "no LeaveAll machine is left", sm().leaveAllSm()->intfLeaveAllSm() );
      gone( "no first frame is open", lib().mrpTxPacketContext() );
      gone( "no second frame is open", lib().mrpTxSecondPacketContext() );
      gone( "no packet access is left", sm().mrpPamSm()->mrpIntfPamSm() );
   }

   static constexpr double longestLeaveTime = 3;

   Input in_;
   Participant participant_;
   U8 behaviour_ = 0;
   std::size_t frameBytes_ = 0;
   int reactions_ = 0;
   U8 declaredType_ = 1;
   U64 declaredKey_ = 0;
   Pelk::IntfId intfId_;
   Occasions const occasions_{ participant_, interfaces,
                               [this]( Occasion occasion, std::string const & interface, U8 type,
                                       U64 key ) { happens( occasion, interface, type, key ); } };
};

} // namespace

void runScript( Mrp::MrpApplication application, U8 const * data, std::size_t size ) {
   Run( application, Input( { data, size } ) ).toTheEnd();
}

} // namespace Fuzz
