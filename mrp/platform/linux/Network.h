// The network of this process's namespace, as the kernel has it.
#pragma once

#include "mrp/platform/kernel/KernelNetInfo.h"
#include "mrp/platform/linux/InterfaceProblem.h"
#include "mrp/platform/linux/Pam.h"

#include <functional>
#include <vector>

namespace Linux {

// Owned by the host, which says which devices there are, and by the Pams that are open. The
// activity outlives it.
class Network : public KernelNetInfo::Status {
 public:
   Network( RealActivity & activity, Korv::Name name )
      : Status( std::move( name ) ), activity_( activity ) {}

   // Under the kernel's number. A device of another number is another one: whoever replaces one
   // takes the old one out first, as the link table does.
   void deviceIs( Pelk::IntfId const & intfId, int index );
   void deviceDel( Pelk::IntfId const & intfId );

   // The Pam opened last of those that are open on the interface, or null.
   Pam * pam( Pelk::IntfId const & intfId ) const;

   Korv::Ptr< Pelk::EthDevPam > newPam( Pelk::IntfId const & intfId,
                                        KernelNetInfo::PamSettings const & settings ) override;

   // Called when a device that is there cannot be opened, and when one has been. One callback each.
   using ProblemCallback =
      std::function< void( Pelk::IntfId const & intfId, InterfaceProblem const & problem ) >;
   void onProblem( ProblemCallback callback ) { problem_ = std::move( callback ); }
   using OpenedCallback = std::function< void( Pelk::IntfId const & intfId ) >;
   void onOpened( OpenedCallback callback ) { opened_ = std::move( callback ); }

 private:
   friend class Pam;
   void pamAdd( Pam * pam ) { pams_.push_back( pam ); }
   void pamDel( Pam * pam ) { std::erase( pams_, pam ); }

   RealActivity & activity_;
   Korv::HashMap< Pelk::IntfId, int > indexes_;
   std::vector< Pam * > pams_;
   ProblemCallback problem_;
   OpenedCallback opened_;
};

} // namespace Linux
