#include "mrp/platform/linux/DescriptorWatch.h"

#include <sys/epoll.h>

namespace Linux {

DescriptorWatch::DescriptorWatch( RealActivity & activity, int descriptor, Korv::U32 events,
                                  Callback callback )
   : activity_( activity ), descriptor_( descriptor ), events_( events ) {
   waiting_->callback = std::move( callback );
   control( EPOLL_CTL_ADD );
}

DescriptorWatch::~DescriptorWatch() {
   ::epoll_ctl( activity_.epoll_.number(), EPOLL_CTL_DEL, descriptor_, nullptr );
}

void DescriptorWatch::eventsIs( Korv::U32 events ) {
   if ( events != events_ ) {
      events_ = events;
      control( EPOLL_CTL_MOD );
   }
}

void DescriptorWatch::modeIs( Mode mode ) {
   if ( mode != mode_ ) {
      mode_ = mode;
      control( EPOLL_CTL_MOD );
   }
}

void DescriptorWatch::control( int operation ) {
   epoll_event event{};
   event.events = ( events_ & reading ? EPOLLIN : 0u ) | ( events_ & writing ? EPOLLOUT : 0u ) |
                  ( mode_ == Mode::atArrival ? EPOLLET : 0u );
   event.data.ptr = waiting_.ptr();
   if ( ::epoll_ctl( activity_.epoll_.number(), operation, descriptor_, &event ) != 0 ) {
      throwErrno( "cannot wait for a descriptor" );
   }
}

void DescriptorWatch::dispatch( void * waiting, Korv::U32 epollEvents ) {
   Korv::Ptr< Waiting > const kept( static_cast< Waiting * >( waiting ) );
   kept->callback( ( epollEvents & EPOLLIN ? reading : 0u ) |
                   ( epollEvents & EPOLLOUT ? writing : 0u ) |
                   ( epollEvents & ( EPOLLERR | EPOLLHUP ) ? failure : 0u ) );
}

} // namespace Linux
