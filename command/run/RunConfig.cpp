// The one file that includes toml++. A value becomes the text that the command line would have,
// and is read like it.
#include "command/run/RunConfig.h"

#include "command/CommandError.h"

#include <toml++/toml.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>

namespace Command {

namespace {

class Reader {
 public:
   explicit Reader( std::string path ) : path_( std::move( path ) ) {}

   RunOptions read();

 private:
   // "a.toml:7: "
   std::string place( toml::source_region const & source ) const {
      return path_ + ":" + std::to_string( source.begin.line ) + ": ";
   }
   std::string content() const;
   void readOption( toml::key const & key, toml::node const & value );
   void readValue( RunOption const & option, toml::node const & value );
   OptionParts partsOf( RunOption const & option, toml::table const & table ) const;
   std::string textOf( toml::node const & value ) const;

   std::string path_;
   RunOptions options_;
};

std::string Reader::content() const {
   std::ifstream file( path_, std::ios::binary );
   if ( !file ) {
      throw CommandError( path_ + ": " + std::strerror( errno ) );
   }
   std::string text;
   std::getline( file, text, '\0' );
   if ( !file.eof() ) {
      throw CommandError( path_ + ": is no text file" );
   }
   return text;
}

RunOptions Reader::read() {
   std::string const text = content();
   try {
      toml::table const table = toml::parse( text );
      for ( auto const & [key, value] : table ) {
         readOption( key, value );
      }
   } catch ( toml::parse_error const & error ) {
      throw CommandError( place( error.source() ) + std::string( error.description() ) );
   }
   return options_;
}

void Reader::readOption( toml::key const & key, toml::node const & value ) {
   for ( RunOption const & option : runOptions() ) {
      if ( key.str() != option.name ) {
         continue;
      }
      auto const * const values = option.isList ? value.as_array() : nullptr;
      if ( !values ) {
         return readValue( option, value );
      }
      for ( toml::node const & member : *values ) {
         readValue( option, member );
      }
      return;
   }
   throw CommandError( place( key.source() ) + "there is no option '" + std::string( key.str() ) +
                       "'" );
}

void Reader::readValue( RunOption const & option, toml::node const & value ) {
   toml::table const * const table = option.readParts ? value.as_table() : nullptr;
   if ( table ) {
      return option.readParts( options_, partsOf( option, *table ) );
   }
   try {
      option.read( options_, textOf( value ) );
   } catch ( CommandError const & error ) {
      throw CommandError( place( value.source() ) + option.name + ": " + error.what() );
   }
}

OptionParts Reader::partsOf( RunOption const & option, toml::table const & table ) const {
   std::string const behindPlace = option.name + std::string( ": " );
   OptionParts parts{ {}, place( table.source() ) + behindPlace };
   for ( auto const & [key, value] : table ) {
      std::string const where = place( value.source() ) + behindPlace;
      try {
         parts.parts.push_back( { std::string( key.str() ), textOf( value ), where } );
      } catch ( CommandError const & error ) {
         throw CommandError( where + std::string( key.str() ) + ": " + error.what() );
      }
   }
   return parts;
}

// As it would stand on the command line.
std::string Reader::textOf( toml::node const & value ) const {
   if ( auto const * const text = value.as_string() ) {
      return text->get();
   }
   if ( auto const * const number = value.as_integer() ) {
      return std::to_string( number->get() );
   }
   if ( auto const * const number = value.as_floating_point() ) {
      std::array< char, 400 > digits; // what a double may take without an exponent
      auto const end = std::to_chars( digits.data(), digits.data() + digits.size(), number->get(),
                                      std::chars_format::fixed );
      return std::string( digits.data(), end.ptr );
   }
   if ( auto const * const yes = value.as_boolean() ) {
      return yes->get() ? "true" : "false";
   }
   throw CommandError( "a text, a number, true or false belongs here" );
}

} // namespace

RunOptions readRunConfig( std::string const & path ) { return Reader( path ).read(); }

} // namespace Command
