// What every record of the wire must be: so many bytes at any address, with no padding, so that it
// can be overlaid on a frame, copied as bytes and compared as bytes.
#pragma once

#include <cstddef>
#include <type_traits>

namespace Mrp {

template < class T, std::size_t bytes >
concept WireRecord = sizeof( T ) == bytes && alignof( T ) == 1 &&
                     std::is_trivially_copyable_v< T > && std::is_standard_layout_v<
                        T > && std::has_unique_object_representations_v< T >;

// The same, and its table of fields names all of its bytes.
template < class T, std::size_t bytes >
concept NamedWireRecord = WireRecord< T, bytes > && T::record.bytes() == bytes;

} // namespace Mrp
