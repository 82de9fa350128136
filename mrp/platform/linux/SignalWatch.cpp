#include "mrp/platform/linux/SignalWatch.h"

#include <sys/signalfd.h>
#include <unistd.h>

namespace Linux {

namespace {

sigset_t setOf( std::initializer_list< int > signals ) {
   sigset_t set;
   ::sigemptyset( &set );
   for ( int const signal : signals ) {
      ::sigaddset( &set, signal );
   }
   return set;
}

Descriptor open( sigset_t const & set ) {
   Descriptor descriptor( ::signalfd( -1, &set, SFD_NONBLOCK | SFD_CLOEXEC ) );
   if ( !descriptor ) {
      throwErrno( "cannot wait for signals" );
   }
   return descriptor;
}

} // namespace

SignalWatch::SignalWatch( RealActivity & activity, std::initializer_list< int > signals,
                          Callback callback )
   : held_( setOf( signals ) ), descriptor_( open( held_ ) ),
     watch_( activity, descriptor_.number(), DescriptorWatch::reading,
             [number = descriptor_.number(), callback = std::move( callback )]( Korv::U32 ) {
                handleReadable( number, callback );
             } ) {
   sigset_t before;
   ::pthread_sigmask( SIG_BLOCK, &held_, &before );
   for ( int const signal : signals ) {
      if ( ::sigismember( &before, signal ) == 1 ) {
         ::sigdelset( &held_, signal );
      }
   }
}

SignalWatch::~SignalWatch() { ::pthread_sigmask( SIG_UNBLOCK, &held_, nullptr ); }

void SignalWatch::handleReadable( int descriptor, Callback const & callback ) {
   signalfd_siginfo info;
   if ( ::read( descriptor, &info, sizeof info ) == sizeof info ) {
      callback( static_cast< int >( info.ssi_signo ) );
   }
}

} // namespace Linux
