// What an observer outside this repository starts with; built against the installed libraries.
#include <mrp/observer/Connection.h>
#include <mrp/platform/linux/RealActivity.h>

#include <iostream>

int main() {
   Linux::RealActivity activity;
   MrpObserver::Mirror mirror;
   MrpObserver::Connection const connection(
      activity, Linux::StreamAddress::fromText( "unix:/nowhere/mvrp.sock" ), mirror );
   activity.runFor( 0.01 );
   std::cout << "no stream: " << connection.lastError() << '\n';
   return connection.lastError().empty() || mirror.hasStream() ? 1 : 0;
}
