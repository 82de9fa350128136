// Mounting entities of other processes. Here every entity stands in this process, so that a mount
// is a claim on a path that the agent has filled.
#pragma once

#include "mrp/platform/mirel/EntityManager.h"

namespace KorvHudra {

struct MountInfo {
   Korv::U32 mode = 0;
};

class Mount : public Korv::PtrInterface {
 public:
   explicit Mount( Korv::Ptr< Mirel::EntityManager > em ) : em_( std::move( em ) ) {}

   void handleInitialized() { initialized_ = true; }
   void doMount( Korv::String8 const & path, Korv::String8 const & typeName,
                 MountInfo const & info );
   // The entity at a path that has been mounted, or null.
   Korv::Entity * getEntity( Korv::String8 const & path ) const;

 private:
   struct Mounted {
      Korv::String8 typeName;
      MountInfo info;
   };
   Korv::Ptr< Mirel::EntityManager > em_;
   Korv::HashMap< Korv::String8, Mounted > mounted_;
   bool initialized_ = false;
};

} // namespace KorvHudra
