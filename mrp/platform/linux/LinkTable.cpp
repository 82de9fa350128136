#include "mrp/platform/linux/LinkTable.h"

#include <cstring>
#include <linux/netlink.h>
#include <sys/socket.h>

namespace Linux {

namespace {

// The number with which an answer ends: of an error, or of the end of a dump; 0 if all is well.
Korv::S32 statusOf( NetlinkMessage const & message ) {
   Korv::S32 status = 0;
   if ( message.body.size() >= sizeof status ) {
      std::memcpy( &status, message.body.data(), sizeof status );
   }
   return status;
}

} // namespace

Link const * LinkTable::link( std::string const & name ) const {
   auto const index = byName_.find( name );
   return index == byName_.end() ? nullptr : &byIndex_.at( index->second ).link;
}

LinkTable::Entry * LinkTable::entry( int index ) {
   auto const found = byIndex_.find( index );
   return found == byIndex_.end() ? nullptr : &found->second;
}

void LinkTable::doDump() {
   if ( isDumping() ) {
      torn_ = true;
   } else {
      begin( Phase::links );
   }
}

void LinkTable::begin( Phase phase ) {
   for ( auto & [index, entry] : byIndex_ ) {
      entry.seen = false;
   }
   torn_ = false;
   failed_ = failed_ && phase == Phase::ports;
   phase_ = phase;
   ++sequence_;
   Korv::U8 const family = phase == Phase::links ? AF_UNSPEC : AF_BRIDGE;
   if ( !askForDump_( family, sequence_ ) ) {
      failed_ = true;
      phase_ = Phase::none;
   }
}

void LinkTable::handleDatagram( NetlinkBytes datagram ) {
   while ( auto const message = nextMessage( datagram ) ) {
      bool const isAnswer = message->port == port_;
      if ( isAnswer && ( !isDumping() || message->sequence != sequence_ ) ) {
         continue; // of a dump that has been given up
      }
      if ( isAnswer && ( message->flags & NLM_F_DUMP_INTR ) != 0 ) {
         torn_ = true;
      }
      if ( message->type == NLMSG_DONE || message->type == NLMSG_ERROR ) {
         if ( isAnswer ) {
            handleDumpEnd( message->type == NLMSG_DONE && statusOf( *message ) >= 0 );
         }
      } else if ( auto const link = readLinkMessage( *message ) ) {
         if ( link->ofBridge ) {
            handlePortMessage( *link );
         } else {
            handleLinkMessage( *link );
         }
      }
   }
}

void LinkTable::handleDumpEnd( bool complete ) {
   if ( torn_ ) {
      begin( Phase::links );
      return;
   }
   if ( complete ) {
      sweep();
   } else {
      failed_ = true;
   }
   if ( phase_ == Phase::links ) {
      begin( Phase::ports );
   } else {
      phase_ = Phase::none;
   }
}

// What the dump that has ended did not mention.
void LinkTable::sweep() {
   std::vector< int > unseen;
   for ( auto const & [index, entry] : byIndex_ ) {
      if ( !entry.seen ) {
         unseen.push_back( index );
      }
   }
   for ( int const index : unseen ) {
      if ( phase_ == Phase::links ) {
         linkDel( index );
      } else {
         Link link = byIndex_.at( index ).link;
         link.portState.reset();
         linkIs( std::move( link ) );
      }
   }
}

void LinkTable::handleLinkMessage( LinkMessage const & message ) {
   if ( message.gone ) {
      linkDel( message.index );
      return;
   }
   if ( message.name.empty() ) {
      return; // tells of something else, such as a radio's
   }
   Entry const * const known = entry( message.index );
   Link link = known ? known->link : Link();
   link.index = message.index;
   link.name = message.name;
   link.ethernet = message.ethernet;
   link.up = message.up;
   link.mtu = message.mtu.value_or( link.mtu );
   if ( message.addr ) {
      link.addr = message.addr;
   }
   linkIs( std::move( link ) );
   if ( phase_ == Phase::links ) {
      byIndex_.at( message.index ).seen = true;
   }
}

void LinkTable::handlePortMessage( LinkMessage const & message ) {
   Entry * const known = entry( message.index );
   // A device can say of itself that it bridges, without being a port.
   if ( !known || ( !message.gone && !message.portState ) ) {
      return;
   }
   known->seen = known->seen || phase_ == Phase::ports;
   Link link = known->link;
   link.portState = message.gone ? std::nullopt : message.portState;
   linkIs( std::move( link ) );
}

void LinkTable::linkIs( Link link ) {
   if ( auto const holder = byName_.find( link.name );
        holder != byName_.end() && holder->second != link.index ) {
      linkDel( holder->second );
   }
   Entry const * known = entry( link.index );
   if ( known && known->link.name != link.name ) {
      linkDel( link.index );
      known = nullptr;
   }
   if ( known && known->link == link ) {
      return;
   }
   std::string const name = link.name;
   byName_[name] = link.index;
   byIndex_[link.index].link = std::move( link );
   changed_( name );
}

void LinkTable::linkDel( int index ) {
   if ( Entry const * const known = entry( index ) ) {
      std::string const name = known->link.name;
      byName_.erase( name );
      byIndex_.erase( index );
      changed_( name );
   }
}

} // namespace Linux
