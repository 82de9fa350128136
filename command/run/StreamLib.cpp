#include "command/run/StreamLib.h"

namespace Command {

// By ascending type, so that one frame holds it all. What is declared already is not said again.
void StreamLib::settle( Keys const & keys ) {
   for ( Pelk::IntfId const intfId : interfaces() ) {
      for ( auto const & talker : plan_.talkers ) {
         declare< Mrp::TalkerAdvertiseKind >( intfId, talker );
      }
      for ( U64 const streamId : keys ) {
         if ( plan_.listeners.contains( streamId ) ) {
            declare< Mrp::ListenerKind >( intfId,
                                          { streamId, declarationType( intfId, streamId ) } );
         }
      }
      for ( auto const & domain : plan_.domains ) {
         declare< Mrp::DomainKind >( intfId, domain );
      }
   }
}

Mrp::MsrpListenerEvent StreamLib::declarationType( Pelk::IntfId intfId, U64 streamId ) const {
   bool const isReady = isRegistered( intfId, Mrp::talkerAdvertise, streamId ) &&
                        !isRegistered( intfId, Mrp::talkerFailed, streamId );
   return isReady ? Mrp::ready : Mrp::askingFailed;
}

} // namespace Command
