// A folder of seeds, a file each.
#pragma once

#include "tests/support/Values.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace Fuzz {

class Corpus {
 public:
   explicit Corpus( std::filesystem::path folder ) : folder_( std::move( folder ) ) {
      std::filesystem::create_directories( folder_ );
   }
   void add( std::string const & name, std::string_view bytes ) const {
      std::ofstream( folder_ / name, std::ios::binary ) << bytes;
   }
   void add( std::string const & name, TestSupport::Bytes const & bytes ) const {
      add( name, { reinterpret_cast< char const * >( bytes.data() ), bytes.size() } );
   }

 private:
   std::filesystem::path folder_;
};

void writeStreams( Corpus const & corpus );
void writeRingFiles( Corpus const & corpus );

} // namespace Fuzz
