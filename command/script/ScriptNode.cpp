#include "command/script/ScriptNode.h"

#include "mrp/platform/korv/RangeException.h"

#include "command/CommandError.h"

#include <nlohmann/json.hpp>

#include <cctype>
#include <charconv>
#include <set>

namespace Command {

namespace {

constexpr std::size_t deepest = 16;
constexpr std::size_t longestShown = 40;

std::string shortened( std::string text ) {
   if ( text.size() > longestShown ) {
      text.resize( longestShown );
      text += "...";
   }
   return text;
}

// What is wrong, in the words of the parser, less its own numbers for it.
std::string plainWords( std::string const & what ) {
   auto const end = what.find( "] " );
   return end == std::string::npos ? what : what.substr( end + 2 );
}

// Sees each key and bracket while a document is read.
class Watch {
 public:
   bool operator()( int, ScriptNode::Json::parse_event_t event, ScriptNode::Json & json ) {
      using Event = ScriptNode::Json::parse_event_t;
      switch ( event ) {
      case Event::object_start:
      case Event::array_start:
         if ( keys_.size() == deepest ) {
            throw CommandError( "lists and objects stand more than " + std::to_string( deepest ) +
                                " deep in each other" );
         }
         keys_.emplace_back();
         break;
      case Event::object_end:
      case Event::array_end: keys_.pop_back(); break;
      case Event::key: {
         auto const & key = json.get_ref< std::string const & >();
         if ( !keys_.back().insert( key ).second ) {
            throw CommandError( "'" + shortened( key ) + "' stands twice in one object" );
         }
         break;
      }
      case Event::value: break;
      }
      return true;
   }

 private:
   std::vector< std::set< std::string > > keys_; // of each object that is open
};

// The whole of the text, which may be a number with 0x, as bits and sign.
struct Whole {
   bool isNegative;
   Korv::U64 magnitude;
};
std::optional< Whole > wholeIn( std::string_view text ) {
   bool const isNegative = text.starts_with( '-' );
   text.remove_prefix( isNegative ? 1 : 0 );
   bool const isHexadecimal = text.starts_with( "0x" ) || text.starts_with( "0X" );
   text.remove_prefix( isHexadecimal ? 2 : 0 );
   Korv::U64 magnitude = 0;
   char const * const end = text.data() + text.size();
   auto const read = std::from_chars( text.data(), end, magnitude, isHexadecimal ? 16 : 10 );
   return read.ec == std::errc() && read.ptr == end
             ? std::optional( Whole{ isNegative, magnitude } )
             : std::nullopt;
}

std::optional< double > numberIn( std::string_view text ) {
   double number = 0;
   char const * const end = text.data() + text.size();
   auto const read = std::from_chars( text.data(), end, number );
   return read.ec == std::errc() && read.ptr == end ? std::optional( number ) : std::nullopt;
}

std::optional< unsigned > digit( char c ) {
   unsigned value = 0;
   return std::from_chars( &c, &c + 1, value, 16 ).ec == std::errc() ? std::optional( value )
                                                                     : std::nullopt;
}

} // namespace

ScriptNode::ScriptNode( std::shared_ptr< Json const > document, Json const & json,
                        std::string place )
   : document_( std::move( document ) ), json_( &json ), place_( std::move( place ) ) {}

ScriptNode ScriptNode::parse( std::string_view text ) {
   try {
      auto const document =
         std::make_shared< Json const >( Json::parse( text.begin(), text.end(), Watch() ) );
      return ScriptNode( document, *document, "" );
   } catch ( nlohmann::json::exception const & error ) {
      throw CommandError( "this is not JSON: " + plainWords( error.what() ) );
   }
}

void ScriptNode::fail( std::string const & what ) const {
   throw CommandError( place_.empty() ? what : place_ + ": " + what );
}

void ScriptNode::failNeeds( std::string const & kind ) const {
   std::string const found =
      json_->is_object() ? "an object"
      : json_->is_array()
         ? "a list"
         : shortened( json_->dump( -1, ' ', true, Json::error_handler_t::replace ) );
   fail( kind + " is needed, not " + found );
}

bool ScriptNode::isNull() const { return json_->is_null(); }
bool ScriptNode::isText() const { return json_->is_string(); }
bool ScriptNode::isObject() const { return json_->is_object(); }
bool ScriptNode::isTruth() const { return json_->is_boolean(); }

ScriptNode ScriptNode::member( std::string const & key, Json const & json ) const {
   return ScriptNode( document_, json, ( place_.empty() ? "" : place_ + "." ) + shortened( key ) );
}

std::vector< std::pair< std::string, ScriptNode > > ScriptNode::members() const {
   if ( !isObject() ) {
      failNeeds( "an object" );
   }
   std::vector< std::pair< std::string, ScriptNode > > all;
   for ( auto const & [key, value] : json_->items() ) {
      all.emplace_back( key, member( key, value ) );
   }
   return all;
}

void ScriptNode::checkKeys( std::initializer_list< std::string_view > known ) const {
   for ( auto const & [key, value] : members() ) {
      if ( std::find( known.begin(), known.end(), key ) == known.end() ) {
         std::string names;
         for ( std::string_view const name : known ) {
            names += ( names.empty() ? "" : ", " ) + std::string( name );
         }
         value.fail( "there is no such key here, but " + names );
      }
   }
}

std::optional< ScriptNode > ScriptNode::find( std::string_view key ) const {
   if ( !isObject() ) {
      failNeeds( "an object" );
   }
   std::string const name( key );
   auto const found = json_->find( name );
   return found == json_->end() ? std::nullopt : std::optional( member( name, *found ) );
}

ScriptNode ScriptNode::at( std::string_view key ) const {
   auto const found = find( key );
   if ( !found ) {
      fail( "'" + std::string( key ) + "' is missing" );
   }
   return *found;
}

std::vector< ScriptNode > ScriptNode::elements() const {
   if ( !json_->is_array() ) {
      failNeeds( "a list" );
   }
   std::vector< ScriptNode > all;
   for ( Json const & element : *json_ ) {
      all.push_back(
         ScriptNode( document_, element, place_ + "[" + std::to_string( all.size() ) + "]" ) );
   }
   return all;
}

std::string ScriptNode::text() const {
   if ( !isText() ) {
      failNeeds( "a text" );
   }
   return json_->get< std::string >();
}

bool ScriptNode::truth() const {
   if ( !json_->is_boolean() ) {
      failNeeds( "true or false" );
   }
   return json_->get< bool >();
}

bool ScriptNode::isName() const {
   return isText() && !text().starts_with( '-' ) &&
          ( text().empty() || std::isdigit( static_cast< unsigned char >( text().front() ) ) == 0 );
}

Korv::U64 ScriptNode::wholeWithin( std::int64_t min, Korv::U64 max ) const {
   std::optional< Whole > const number = isText()                     ? wholeIn( text() )
                                         : json_->is_number_integer() ? wholeIn( json_->dump() )
                                                                      : std::nullopt;
   // A minimum below 0 is never the least of its type, so that it has a magnitude.
   bool const fits =
      number && ( number->isNegative ? min < 0 && number->magnitude <= Korv::U64( -min )
                                     : number->magnitude <= max &&
                                          ( min < 0 || number->magnitude >= Korv::U64( min ) ) );
   if ( !fits ) {
      failNeeds( "a whole number from " + std::to_string( min ) + " to " + std::to_string( max ) );
   }
   return number->isNegative ? -number->magnitude : number->magnitude;
}

double ScriptNode::number( double min, double max ) const {
   std::optional< double > const number = isText() ? numberIn( text() )
                                          : json_->is_number()
                                             ? std::optional( json_->get< double >() )
                                             : std::nullopt;
   if ( !number || !( *number >= min && *number <= max ) ) {
      failNeeds( "a number from " + Json( min ).dump() + " to " + Json( max ).dump() );
   }
   return *number;
}

std::vector< Korv::U8 > ScriptNode::bytes() const {
   std::vector< Korv::U8 > bytes;
   std::optional< unsigned > high;
   for ( char const c : text() ) {
      if ( c == ' ' ) {
         continue;
      }
      auto const low = digit( c );
      if ( !low ) {
         failNeeds( "text of hexadecimal digits" );
      }
      if ( high ) {
         bytes.push_back( static_cast< Korv::U8 >( *high * 16 + *low ) );
      }
      high = high ? std::nullopt : low;
   }
   if ( high ) {
      fail( "half a byte is left over at the end" );
   }
   return bytes;
}

Pelk::EthAddr ScriptNode::address() const {
   try {
      return Pelk::EthAddr( text() );
   } catch ( Korv::RangeException const & ) {
      failNeeds( "a MAC address such as 01:80:c2:00:00:21" );
   }
}

} // namespace Command
