// The ring buffer as a file: mapped into memory, so that what was written is there to be read when
// the process is gone, however it went. `mrp ring` reads it, as does RingReader.h.
#pragma once

#include "mrp/platform/sornlog/RingLayout.h"
#include "mrp/platform/sornlog/Sornlog.h"

#include <array>
#include <string>

namespace Sornlog {

// Owned by the agent, which makes it the process's: `Sornlog::fileIs( &ringFile )`, and null before
// its end. One thread writes; others may read the file at any time.
//
//  1. A file is always new. One that a process before has left is kept under the name with ".old"
//     behind it, so that a restart does not take the traces of a crash away. While it is made it
//     has ".new" behind its name.
//  2. All of its blocks are there from the start: no write can fail for a full disk. (Whoever cuts
//     the file short while it is written ends the process, as with any mapped file.)
//  3. A record is either whole or known not to be, wherever the process ends. (When the machine
//     ends, what the kernel has not written back is lost.)
//  4. A write allocates nothing and calls nothing in the kernel.
class RingFile : public File {
 public:
   static constexpr Korv::U32 defaultRecordsPerRing = 4096; // makes a file of 5 MB

   // Throws std::runtime_error with the path in its words, a std::system_error where the system
   // has refused. What stands there, or under the names with ".old" and ".new" behind it, and is no
   // ring file, or is being written by another process, is left alone.
   explicit RingFile( std::string const & path, Korv::U32 recordsPerRing = defaultRecordsPerRing );
   RingFile( RingFile const & ) = delete;
   RingFile & operator=( RingFile const & ) = delete;
   ~RingFile() override;

   // Sites of levels above 9 are ignored. Of a string the first 32 bytes are written.
   void write( Site const & site, std::span< Argument const > arguments ) override;

 private:
   static constexpr std::size_t numberSlots = 4 * Layout::siteSlots;
   struct Number {
      Site const * site;
      Korv::U16 number;
   };

   Number & numberOf( Site const & site );
   bool registerSite( Number & number, Site const & site );
   Layout::Record & nextRecord( Korv::U8 level );

   int descriptor_; // holds the lock
   Korv::U32 recordsPerRing_;
   Layout::Header * header_;
   Layout::Site * sites_;
   Layout::Record * records_;
   // Nothing that is read back decides where is written: others can change the file.
   Korv::U32 registered_ = 0;
   Korv::U64 sequence_ = 0;
   std::array< Korv::U32, Layout::rings > next_{};
   std::array< Number, numberSlots > numbers_{}; // hashed by the site's address
};

} // namespace Sornlog
