#pragma once

namespace Korv {

// The flag is true for as long as this lives, whatever is thrown meanwhile.
class FlagWhile {
 public:
   explicit FlagWhile( bool & flag ) : flag_( flag ) { flag_ = true; }
   FlagWhile( FlagWhile const & ) = delete;
   FlagWhile & operator=( FlagWhile const & ) = delete;
   ~FlagWhile() { flag_ = false; }

 private:
   bool & flag_;
};

} // namespace Korv
