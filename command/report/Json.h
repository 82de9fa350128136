// What the JSON documents of all subcommands have in common.
#pragma once

#include "command/report/Report.h"

#include <nlohmann/json.hpp>

namespace Command {

using Json = nlohmann::ordered_json;

// An indent of -1 makes one line. Bytes that are no UTF-8 are replaced: names come from the network
// and from files.
inline std::string jsonText( Json const & json, int indent ) {
   return json.dump( indent, ' ', false, Json::error_handler_t::replace );
}

Json countersJson( std::vector< std::pair< std::string, Korv::U64 > > const & counters );

// The members with which every document describes an attribute, short of its value.
Json attributeJson( Report::Attribute const & attribute );

} // namespace Command
