#include "command/CommandLine.h"

#include <iostream>

int main( int argc, char ** argv ) {
   std::ios::sync_with_stdio( false );
   return Command::runCommandLine( argc, argv, std::cout, std::cerr );
}
