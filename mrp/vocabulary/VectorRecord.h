// The start of a VectorAttribute, seen in place.
//
//    0      2               2 + n
//    +------+----...----+--------+
//    | head | FirstValue | vector |      n = sizeof( FirstValue )
//    +------+----...----+--------+
//
// The head holds the LeaveAll bit and the NumberOfValues (VectorFormat.h); `vector` is the first
// event byte, and only there if the vector holds a value.
#pragma once

#include "mrp/vocabulary/Foundation.h"
#include "mrp/vocabulary/WireRecord.h"

namespace Mrp {

template < class FirstValue >
class VectorRecord {
 public:
   VectorRecord() = default;
   VectorRecord( U16 vectorHeader, FirstValue const & firstValue, U8 vector )
      : vectorHeader_( vectorHeader ), firstValue_( firstValue ), vector_( vector ) {}

   U16 vectorHeader() const { return vectorHeader_; }
   void vectorHeaderIs( U16 vectorHeader ) { vectorHeader_ = vectorHeader; }
   FirstValue const & firstValue() const { return firstValue_; }
   void firstValueIs( FirstValue const & firstValue ) { firstValue_ = firstValue; }
   U8 vector() const { return vector_; }
   void vectorIs( U8 vector ) { vector_ = vector; }

   bool operator==( VectorRecord const & ) const = default;

 private:
   Korv::NetworkOrder< U16 > vectorHeader_;
   FirstValue firstValue_;
   U8 vector_ = 0;
};

} // namespace Mrp
