// What IEEE 802.1Q assigns to each application: group addresses in tables 8-1 and 10-1, EtherTypes
// in table 10-2. The library has none of it built in; these are the command's defaults.
#pragma once

#include "mrp/platform/pelk/EthAddr.h"
#include "mrp/vocabulary/Mrp.h"

namespace Command {

inline Pelk::EthAddr wellKnownAddress( Mrp::MrpApplication application ) {
   return application == Mrp::MVRP ? Pelk::EthAddr( 0x01, 0x80, 0xC2, 0x00, 0x00, 0x21 )
                                   : Pelk::EthAddr( 0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E );
}

inline Korv::U16 wellKnownEthertype( Mrp::MrpApplication application ) {
   return application == Mrp::MVRP ? 0x88F5 : 0x22EA;
}

} // namespace Command
