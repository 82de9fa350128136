#include "command/report/Words.h"

#include "mrp/platform/korv/Format.h"

#include "command/report/ValueRecord.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Command {

namespace {

// In the order of their numbers; a number behind the last comes out as itself.
template < std::size_t n >
std::string wordAt( std::array< char const *, n > const & words, U64 number,
                    char const * otherwise ) {
   return number < n ? words[number] : otherwise + std::to_string( number );
}

constexpr std::array applicantWords{ "VO", "VP", "VN", "AN", "AA", "QA",
                                     "LA", "AO", "QO", "AP", "QP", "LO" };
static_assert( applicantWords.size() == Mrp::mrpLeavingObserver + 1 );
constexpr std::array registrarWords{ "IN", "LV", "MT" };
static_assert( registrarWords.size() == Mrp::mrpMt + 1 );
constexpr std::array eventWords{ "New", "JoinIn", "In", "JoinMt", "Mt", "Lv" };
static_assert( eventWords.size() == Mrp::lvEvent + 1 );
constexpr std::array declarationWords{ "Ignore", "Asking Failed", "Ready", "Ready Failed" };
static_assert( declarationWords.size() == Mrp::readyFailed + 1 );

constexpr std::array failureWords{ "no failure",
                                   "insufficient bandwidth",
                                   "insufficient bridge resources",
                                   "insufficient bandwidth for traffic class",
                                   "stream id in use by another talker",
                                   "stream destination address already in use",
                                   "stream preempted by higher rank",
                                   "reported latency has changed",
                                   "egress port is not AVB capable",
                                   "use a different destination address",
                                   "out of MSRP resources",
                                   "out of MMRP resources",
                                   "cannot store destination address",
                                   "requested priority is not an SR class priority",
                                   "MaxFrameSize is too large for media",
                                   "msrpMaxFanInPorts limit has been reached",
                                   "changes in FirstValue for a registered stream id",
                                   "VLAN is blocked on this egress port",
                                   "VLAN tagging is disabled on this egress port",
                                   "SR class priority mismatch" };
static_assert( failureWords.size() == 20 );

std::string number( U64 value ) { return std::to_string( value ); }

std::string classWord( U8 srClassId ) {
   return srClassId <= srClassA ? "class " + srClassWord( srClassId )
                                : "class id " + number( srClassId );
}

Fields fieldsOf( Mrp::MvrpVlanAttribute const & vlan ) {
   return { { "VLAN", number( vlan.vlanId() ), true } };
}

Fields fieldsOf( Mrp::MsrpTalkerAdvertiseAttribute const & talker ) {
   return { { "stream", streamIdWord( talker.streamId() ), true },
            { "destination", talker.frame().dmac().stringValue(), false },
            { "VLAN", number( talker.frame().vlanId() ), false },
            { "frames",
              number( talker.tSpec().maxFrameSize() ) + " x " +
                 number( talker.tSpec().maxIntervalFrames() ),
              false },
            { "priority", number( talker.priorityAndRank().priority() ), false },
            { "rank", number( talker.priorityAndRank().rank() ), false },
            { "latency", number( talker.accumulatedLatency() ) + " ns", false } };
}

Fields fieldsOf( Mrp::MsrpTalkerFailedAttribute const & talker ) {
   Fields fields = fieldsOf( talker.talkerAdvertiseAttribute() );
   auto const & failure = talker.failureInformation();
   fields.push_back( { "bridge", bridgeIdWord( failure.bridgeId() ), false } );
   fields.push_back( { "failure", failureWord( failure.failureCode() ), false } );
   return fields;
}

Fields fieldsOf( Mrp::MsrpListenerAttribute const & listener ) {
   return { { "stream", streamIdWord( listener.streamId() ), true },
            { "declaration", wordAt( declarationWords, listener.listenerEvent(), "declaration " ),
              true } };
}

Fields fieldsOf( Mrp::MsrpDomainAttribute const & domain ) {
   return { { "domain", classWord( domain.srClassId() ), true },
            { "priority", number( domain.srClassPriority() ), false },
            { "VID", number( domain.srClassVID() ), false } };
}

char const * nameOf( Mrp::VlanKind ) { return "VLAN"; }
char const * nameOf( Mrp::TalkerAdvertiseKind ) { return "Talker Advertise"; }
char const * nameOf( Mrp::TalkerFailedKind ) { return "Talker Failed"; }
char const * nameOf( Mrp::ListenerKind ) { return "Listener"; }
char const * nameOf( Mrp::DomainKind ) { return "Domain"; }

bool isNumber( std::string const & text ) {
   return std::ranges::all_of( text, []( char c ) { return c >= '0' && c <= '9'; } );
}

} // namespace

std::string stateWord( Mrp::MrpApplicantState state ) {
   return wordAt( applicantWords, state, "state " );
}
std::string stateWord( Mrp::MrpRegistrarState state ) {
   return wordAt( registrarWords, state, "state " );
}
std::string eventWord( U8 attributeEvent ) {
   return wordAt( eventWords, attributeEvent, "event " );
}

std::string typeWord( Mrp::MrpApplication application, U8 attributeType ) {
   std::string word = "type " + number( attributeType );
   Mrp::withAttributeKind( application, attributeType,
                           [&]( auto kind ) { word = nameOf( kind ); } );
   return word;
}

std::string srClassWord( U8 srClassId ) {
   return std::string( 1, static_cast< char >( 'A' + srClassA - srClassId ) );
}

std::string streamIdWord( U64 streamId ) {
   return Pelk::EthAddr::fromNumber( streamId >> 16 ).stringValue() +
          Korv::format( ":%02x:%02x", static_cast< unsigned >( streamId >> 8 & 0xFF ),
                        static_cast< unsigned >( streamId & 0xFF ) );
}

std::string bridgeIdWord( U64 bridgeId ) {
   return Korv::format( "%04x.", static_cast< unsigned >( bridgeId >> 48 ) ) +
          Pelk::EthAddr::fromNumber( bridgeId ).stringValue();
}

std::string failureWord( U8 failureCode ) {
   return failureCode < failureWords.size()
             ? number( failureCode ) + " (" + failureWords[failureCode] + ")"
             : number( failureCode );
}

std::string hexText( std::span< U8 const > bytes ) {
   constexpr char digits[] = "0123456789abcdef";
   std::string text;
   text.reserve( 2 * bytes.size() );
   for ( U8 const byte : bytes ) {
      text += digits[byte >> 4];
      text += digits[byte & 0xF];
   }
   return text;
}

std::string printable( std::string const & text ) {
   std::string shown;
   for ( std::size_t i = 0; i < text.size(); ++i ) {
      auto const isBetween = [&]( std::size_t at, U8 first, U8 last ) {
         return at < text.size() && U8( text[at] ) >= first && U8( text[at] ) <= last;
      };
      bool const isTwoBytes = isBetween( i, 0xC2, 0xC2 ) && isBetween( i + 1, 0x80, 0x9F );
      bool const isControl = isTwoBytes || isBetween( i, 0, ' ' - 1 ) || isBetween( i, 0x7F, 0x7F );
      shown += isControl ? '?' : text[i];
      i += isTwoBytes ? 1 : 0;
   }
   return shown;
}

Fields valueFields( Mrp::MrpApplication application, U8 attributeType, Bytes const & value ) {
   Fields fields;
   withValue( application, attributeType, value,
              [&]( auto, auto const & record ) { fields = fieldsOf( record ); } );
   if ( fields.empty() ) {
      fields.push_back( { "value", hexText( value ), true } );
   }
   return fields;
}

Fields rangeFields( Mrp::MrpApplication application, U8 attributeType, Bytes const & first,
                    Bytes const & last ) {
   Fields fields = valueFields( application, attributeType, first );
   Fields const ends = valueFields( application, attributeType, last );
   for ( std::size_t i = 0; i < fields.size() && i < ends.size(); ++i ) {
      std::string & text = fields[i].text;
      if ( text != ends[i].text ) {
         text += ( isNumber( text ) ? "-" : " to " ) + ends[i].text;
      }
   }
   return fields;
}

Bytes nextValue( Mrp::MrpApplication application, U8 attributeType, Bytes const & value ) {
   Bytes next;
   withValue( application, attributeType, value, [&]( auto kind, auto const & record ) {
      next = bytesOf( decltype( kind )::next( record ) );
   } );
   return next;
}

Bytes valueOfFirstValue( Mrp::MrpApplication application, U8 attributeType,
                         std::span< U8 const > firstValue ) {
   Bytes value;
   Mrp::withAttributeKind( application, attributeType, [&]( auto kind ) {
      using Kind = decltype( kind );
      typename Kind::FirstValue first;
      if ( firstValue.size() == sizeof first ) {
         std::memcpy( &first, firstValue.data(), sizeof first );
         value = bytesOf( Kind::received( first ) );
      }
   } );
   return value;
}

std::string sentence( Fields const & fields, std::string const & what ) {
   std::string text = fields.front().text;
   if ( !what.empty() ) {
      text += " " + what;
   }
   for ( std::size_t i = 1; i < fields.size(); ++i ) {
      text += i == 1 ? " (" : ", ";
      text += fields[i].standsAlone ? fields[i].text : fields[i].heading + " " + fields[i].text;
   }
   return fields.size() > 1 ? text + ")" : text;
}

std::string shortSentence( Fields const & fields, std::string const & what ) {
   Fields few;
   std::ranges::copy_if( fields, std::back_inserter( few ), &Field::standsAlone );
   return sentence( few, what );
}

} // namespace Command
