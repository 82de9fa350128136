// Scripts of `mrp script`: any bytes read as one, or put in the place of a value in one that is
// good. What is accepted keeps to the limits and is in order. Nothing of it is run.
#include "command/CommandError.h"
#include "command/script/Script.h"
#include "tests/fuzz/script/Check.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>

namespace {

using Fuzz::check;
using Json = nlohmann::ordered_json;

// Something of everything.
constexpr char const * good = R"({
   "name": "all", "about": "of it",
   "application": "MSRP", "mac": "01:80:c2:00:00:0e", "etype": "0x22ea",
   "bridgeMac": "02:00:00:00:00:ff",
   "interfaces": {"e1": {"mac": "02:00:00:00:00:01", "mtu": 1500}, "e2": {"mac": null, "mtu": null}},
   "config": {"leaveTime": 1, "mrpFlooding": false, "intfLeaveTime": {"e1": 2}},
   "standby": true,
   "joinRefusals": [["e1", 1, 7]],
   "preload": [{"intf": "e1", "type": 4, "key": 6, "applicant": "mrpQuietActive", "registrar": 2,
                "value": {"domainVector": {"srClassId": 6, "srClassPriority": 3, "srClassVID": 2}}}],
   "steps": [
      {"at": 0.1, "op": "rx", "intf": "e1", "frame": "0180c200000e 0200"},
      {"at": 0, "op": "enable", "intf": "e1"},
      {"at": 0.2, "op": "send", "intf": "e1", "type": "talkerFailed", "event": "newEvent",
       "value": {"talkerFailed": {"streamId": "0x8000000000000001", "dmac": "91:e0:f0:00:0e:80",
                                  "vlanId": 2, "maxFrameSize": 100, "maxIntervalFrames": 1,
                                  "priority": 3, "rank": true, "accumulatedLatency": 5,
                                  "bridgeId": 9, "failureCode": 1},
                 "listenerVector": {"streamId": 1, "listenerEvent": "ready"}},
       "queue": ["e1", "e2"]},
      {"at": 0.3, "op": "config", "attribute": "intfLeaveAllTime", "intf": "e1", "value": null},
      {"at": 0.4, "op": "role", "port": "e1", "msti": "Cist", "stpi": "Mst", "role": 3},
      {"at": 0.5, "op": "stpMode", "mode": -1, "native": {"e1": 7}, "vlans": [1, 7]},
      {"at": 0.6, "op": "endStandby"}],
   "until": 1})";

std::string with( std::string const & bytes, std::size_t place ) {
   static Json const script = Json::parse( good );
   static Json const places = script.flatten();
   Json changed = script;
   bool const isJson = Json::accept( bytes );
   auto const where = std::next( places.begin(), static_cast< long >( place % places.size() ) );
   changed[Json::json_pointer( where.key() )] = isJson ? Json::parse( bytes ) : Json( bytes );
   return changed.dump( -1, ' ', false, Json::error_handler_t::ignore );
}

void read( std::string const & text ) {
   try {
      Command::Script const script = Command::readScript( text );
      auto const & steps = script.steps;
      check( script.until <= Command::ScriptLimits::time, "a run ends" );
      check( script.interfaces.size() <= Command::ScriptLimits::interfaces, "interfaces are few" );
      check( std::ranges::is_sorted( steps, {}, &Command::Script::Step::at ),
             "steps are in order" );
      check( steps.empty() || ( steps.front().at >= 0 && steps.back().at <= script.until ),
             "steps are within the run" );
   } catch ( Command::CommandError const & error ) {
      check( error.what()[0] != '\0', "an error has words" );
   }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   if ( size == 0 ) {
      return 0;
   }
   std::string const bytes( reinterpret_cast< char const * >( data ) + 1, size - 1 );
   read( data[0] < 128 ? bytes : with( bytes, data[0] - 128u ) );
   return 0;
}
