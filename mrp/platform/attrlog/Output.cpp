#include "mrp/platform/attrlog/Output.h"

#include "mrp/platform/attrlog/Adapter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Korv::NboAttrLog {

Output::Output( std::size_t bound ) : bound_( bound ), buffer_( greetingBytes ) {
   std::memcpy( buffer_.data(), magic, magicBytes );
   ByteWriter versions( buffer_.data() + magicBytes );
   versions.put( majorVersion );
   versions.put( minorVersion );
   end_ = greetingBytes;
}

void Output::frontDel( std::size_t count ) {
   gone_ += count;
   if ( gone_ == end_ ) {
      gone_ = end_ = 0;
   } else if ( gone_ >= bound_ ) {
      std::memmove( buffer_.data(), buffer_.data() + gone_, bytes() );
      end_ -= gone_;
      gone_ = 0;
   }
}

void Output::doMakeRoom( std::size_t count ) {
   buffer_.resize( std::max( 2 * buffer_.size(), end_ + count ) );
}

void Output::newcomerIs( Adapter & adapter, Notifier const & entity, U64 parent,
                         U16 parentAttrId ) {
   doTellNewcomer();
   newcomer_ = { &adapter, Ptr< Notifier const >( &entity ), parent, parentAttrId };
   if ( bytes() == 0 ) {
      handleBytes();
   }
}

void Output::doStartNewcomer() {
   auto const newcomer = std::exchange( newcomer_, {} );
   newcomer.adapter->doStart( this, newcomer.parent, newcomer.parentAttrId );
}

void Output::doFlowOut() {
   Turn const turn( *this );
   doTellNewcomer();
   while ( !flows_.empty() && continueFlowOut() && !failed_ ) {
      flows_.front()->doResumeFlowOut();
   }
}

} // namespace Korv::NboAttrLog
