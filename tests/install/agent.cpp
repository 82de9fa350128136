// What an agent outside this repository starts with; built against the installed library.
#include <mrp/frame/MrpLib.h>

#include <iostream>

int main() {
   auto lib = Mrp::mrpLibFactory();
   lib->applicationIs( Mrp::MVRP );
   std::cout << "application " << static_cast< int >( lib->application() ) << '\n';
   return lib->application() == Mrp::MVRP ? 0 : 1;
}
