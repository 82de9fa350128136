// States, events and values in the words and notations of those who work with MRP.
#pragma once

#include "mrp/vocabulary/Mrp.h"

#include <span>
#include <string>
#include <vector>

namespace Command {

using Korv::U64;
using Korv::U8;

// The short names of the standard: VO, VP, VN, AN, AA, QA, LA, AO, QO, AP, QP, LO and IN, LV, MT.
std::string stateWord( Mrp::MrpApplicantState state );
std::string stateWord( Mrp::MrpRegistrarState state );

// New, JoinIn, In, JoinMt, Mt or Lv.
std::string eventWord( U8 attributeEvent );
// "VLAN", "Talker Failed"; for a type that is none its number.
std::string typeWord( Mrp::MrpApplication application, U8 attributeType );

// The letter of an SR class: ids run from 6 for class A down to 0 for class G.
inline constexpr U8 srClassA = 6;
std::string srClassWord( U8 srClassId );
std::string streamIdWord( U64 streamId );
// Two bytes of priority, then an address: "8000.02:00:00:00:00:01".
std::string bridgeIdWord( U64 bridgeId );
// The reason that a Talker Failed gives, with its number; IEEE 802.1Q, Table 35-6.
std::string failureWord( U8 failureCode );

std::string hexText( std::span< U8 const > bytes );

// A name that another process has chosen, without what a terminal would obey: '?' for each control
// character, those of two bytes in UTF-8 included.
std::string printable( std::string const & text );

// An attribute's value, field by field; the first field is what names it.
struct Field {
   std::string heading;
   std::string text;
   bool standsAlone = false; // can be understood without the heading
};
using Fields = std::vector< Field >;

using Bytes = std::vector< U8 >;

// The value is given as the record that the database keeps. Bytes that are no such record come out
// in hexadecimal.
Fields valueFields( Mrp::MrpApplication application, U8 attributeType, Bytes const & value );
// The same for values that follow on each other, from the first to the last: "10-13".
Fields rangeFields( Mrp::MrpApplication application, U8 attributeType, Bytes const & first,
                    Bytes const & last );
// The value one step on, as in a vector.
Bytes nextValue( Mrp::MrpApplication application, U8 attributeType, Bytes const & value );
// The value that a FirstValue on the wire stands for; empty for bytes that are none.
Bytes valueOfFirstValue( Mrp::MrpApplication application, U8 attributeType,
                         std::span< U8 const > firstValue );

// The first field, then `what` happens to it, then the others in brackets, or those alone that
// need no heading: "10-13 JoinIn", "02:00:00:00:00:01:00:00 New (Ready)".
std::string sentence( Fields const & fields, std::string const & what );
std::string shortSentence( Fields const & fields, std::string const & what );

} // namespace Command
