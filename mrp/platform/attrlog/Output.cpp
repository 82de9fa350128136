#include "mrp/platform/attrlog/Output.h"

#include "mrp/platform/attrlog/Adapter.h"

namespace Korv::NboAttrLog {

Output::Output( std::size_t bound ) : bound_( bound ) {
   ByteWriter greeting( buffer_ );
   greeting.append( magic, magicBytes );
   greeting.put( majorVersion );
   greeting.put( minorVersion );
}

ByteWriter Output::nextHeaderIs( U64 entity, S16 attrId, U8 flags ) {
   message_ = buffer_.size();
   ByteWriter writer( buffer_ );
   writer.put( U32{ 0 } ); // the length, once it is known
   writer.put( entity );
   writer.put( attrId );
   writer.put( flags );
   return writer;
}

void Output::messageEnd() {
   NetworkOrder< U32 > const length(
      static_cast< U32 >( buffer_.size() - message_ - lengthBytes ) );
   std::memcpy( buffer_.data() + message_, &length, lengthBytes );
   written_ += buffer_.size() - message_;
   handleBytes();
}

void Output::doSendMarker( U64 entity, U16 attrId, Marker marker ) {
   nextHeaderIs( entity, static_cast< S16 >( attrId ), transaction )
      .put( static_cast< U8 >( marker ) );
   messageEnd();
}

void Output::frontDel( std::size_t count ) {
   gone_ += count;
   if ( gone_ == buffer_.size() ) {
      buffer_.clear();
      gone_ = 0;
   } else if ( gone_ >= bound_ ) {
      buffer_.erase( buffer_.begin(), buffer_.begin() + static_cast< std::ptrdiff_t >( gone_ ) );
      gone_ = 0;
   }
}

void Output::doFlowOut() {
   Turn const turn( *this );
   while ( !flows_.empty() && continueFlowOut() && !failed_ ) {
      flows_.front()->doResumeFlowOut();
   }
}

} // namespace Korv::NboAttrLog
