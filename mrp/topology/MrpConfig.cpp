#include "mrp/topology/MrpConfig.h"

#include "mrp/frame/MrpSm.h"

#include <cstdlib>

namespace Mrp {

namespace {

// An override of 0 is none.
Korv::Seconds overrideOr( Korv::Seconds own, Korv::Seconds systemWide ) {
   return own != 0 ? own : systemWide;
}

} // namespace

Korv::Ptr< MrpConfig > mrpConfigFactory( Korv::Name const & name ) {
   return Korv::newValidPtr< MrpConfig >( name );
}

Korv::Seconds MrpSm::mrpGetLeaveTime( Pelk::IntfId intfId ) const {
   return overrideOr( mrpConfig_->intfLeaveTime( intfId ), mrpConfig_->leaveTime() );
}

Korv::Seconds getLeaveAllTime( MrpSm const & mrpSm, Pelk::IntfId intfId ) {
   MrpConfig const & config = *mrpSm.mrpConfig();
   Korv::Seconds const base =
      overrideOr( config.intfLeaveAllTime( intfId ), config.leaveAllTime() );
   if ( std::getenv( "DISABLE_LEAVE_ALL_RANDOMIZATION" ) ) {
      return base;
   }
   // A rand() of at most 2^31 - 1 gives a factor in [1, 1.5).
   constexpr float twoToMinus32 = 2.3283064365386963e-10f;
   return base * ( 1 + std::rand() * static_cast< double >( twoToMinus32 ) );
}

} // namespace Mrp
