#include "tests/fuzz/script/Script.h"

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Fuzz::runScript( Mrp::MSRP, data, size );
   return 0;
}
