// The links of a network namespace, as far as packet access wants to know them.
#pragma once

#include "mrp/platform/linux/Netlink.h"

#include <functional>
#include <map>
#include <string>

namespace Linux {

struct Link {
   int index = 0;
   std::string name;
   Korv::U32 mtu = 0;
   bool ethernet = false;
   bool up = false; // switched on, and with a partner at the other end
   std::optional< Pelk::EthAddr > addr;
   std::optional< Korv::U8 > portState; // as a port of a bridge

   bool operator==( Link const & ) const = default;
};

// Kept by netlink messages: announcements of changes, and dumps of all that there is. It asks for
// a dump at the start and when announcements have been lost; one that the kernel found to be torn
// by changes under way is asked for again. What a complete dump does not mention has gone. A dump
// that fails deletes nothing; when to ask again is up to the owner.
//
// Owned by the monitor, which brings the bytes. It holds no descriptor, so that tests can be the
// kernel.
//
//  1. No two links have one index, and no two one name. A link renamed, or replaced by another of
//     its name, goes under the old and comes under the new: with a call of `changed` for each.
//  2. At most one dump runs. It is of links, and then of bridge ports; each has a number of its
//     own, and answers under an older number are not looked at.
class LinkTable {
 public:
   // Something about the link of this name is other than it was; it may have gone.
   using Changed = std::function< void( std::string const & name ) >;
   // Asks the kernel for all links of the family; false if that is not possible.
   using AskForDump = std::function< bool( Korv::U8 family, Korv::U32 sequence ) >;

   // `port` is the socket's own: answers come with it, and announcements with others.
   LinkTable( Korv::U32 port, AskForDump askForDump, Changed changed )
      : port_( port ), askForDump_( std::move( askForDump ) ), changed_( std::move( changed ) ) {}

   // The link, or null. Good until the next message.
   Link const * link( std::string const & name ) const;
   bool isDumping() const { return phase_ != Phase::none; }
   // The last dump could not be asked for, or has ended in an error: the table may be out of date.
   bool isDumpFailed() const { return failed_ && !isDumping(); }

   // At the start, and when announcements have been lost. While a dump runs, when it has ended.
   void doDump();
   // A datagram of the kernel's. Whatever it holds: what is malformed is left out.
   void handleDatagram( std::span< Korv::U8 const > datagram );

 private:
   enum class Phase : Korv::U8 { none, links, ports };
   struct Entry {
      Link link;
      bool seen = false; // in this phase of the dump
   };

   void begin( Phase phase );
   void handleMessage( NetlinkMessage const & message );
   void handleDumpEnd( bool complete );
   void handleLinkMessage( LinkMessage const & message );
   void handlePortMessage( LinkMessage const & message );
   void linkIs( Link link );
   void linkDel( int index );
   void sweep();
   Entry * entry( int index );

   Korv::U32 port_;
   AskForDump askForDump_;
   Changed changed_;
   std::map< int, Entry > byIndex_;
   std::map< std::string, int > byName_;
   Phase phase_ = Phase::none;
   Korv::U32 sequence_ = 0;
   bool torn_ = false;   // the dump under way will have to be repeated
   bool failed_ = false; // it, or a part of it
};

} // namespace Linux
