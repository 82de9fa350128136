// Which interfaces have a link, as the directory of all interfaces says.
#pragma once

#include "mrp/platform/interface/AllIntfStatusDir.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Command {

// Owned by whoever wants to know.
class LinkWatch {
 public:
   // `changed` is called when the answer for any interface may be another one than before.
   explicit LinkWatch( std::function< void() > changed ) : changed_( std::move( changed ) ) {}
   LinkWatch( LinkWatch const & ) = delete;
   LinkWatch & operator=( LinkWatch const & ) = delete;

   void start( Korv::Ptr< Interface::AllIntfStatusDir > dir,
               std::vector< Pelk::IntfId > const & interfaces );
   // An interface that the directory knows nothing of has one.
   bool isUp( Pelk::IntfId intfId ) const;
   // Watches the entries that are there now. Called by the owner some time after `changed`, from
   // outside of it.
   void refresh();

 private:
   class DirWatch : public Interface::AllIntfStatusDir::Reactor {
    public:
      explicit DirWatch( LinkWatch & owner ) : owner_( owner ) {}
      void onIntfStatus( Pelk::IntfId const & ) override { owner_.changed_(); }

    private:
      LinkWatch & owner_;
   };
   class EntryWatch : public Interface::IntfStatus::Reactor {
    public:
      explicit EntryWatch( LinkWatch & owner ) : owner_( owner ) {}
      void onUp() override { owner_.changed_(); }

    private:
      LinkWatch & owner_;
   };

   std::function< void() > changed_;
   Korv::Ptr< Interface::AllIntfStatusDir > dir_;
   DirWatch dirWatch_{ *this };
   std::map< Pelk::IntfId, std::unique_ptr< EntryWatch > > entryWatches_;
};

} // namespace Command
