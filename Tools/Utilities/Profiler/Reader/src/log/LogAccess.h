#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "flatbuffers/flatbuffers.h"

/// Access to the vectors and strings of a verified chunk. They may stand at any address there, so their
/// members are not touched; all that is read is read bytewise.
namespace zeb::profiling {

/// @return number of elements of a FlatBuffers vector or string
template <typename Vector>
std::uint32_t lengthOf(const Vector* vector) {
    return flatbuffers::ReadScalar<flatbuffers::uoffset_t>(vector);
}

/// @return table `index` of a vector, which has to be below its length
template <typename Table>
const Table* tableAt(const flatbuffers::Vector<flatbuffers::Offset<Table>>* vector, std::uint32_t index) {
    const auto* element = reinterpret_cast<const std::uint8_t*>(vector) + sizeof(flatbuffers::uoffset_t) +
                          std::size_t{index} * sizeof(flatbuffers::uoffset_t);
    return reinterpret_cast<const Table*>(element + flatbuffers::ReadScalar<flatbuffers::uoffset_t>(element));
}

/// @return the elements of a vector of bytes; they lie in the chunk
inline std::span<const std::byte> bytesOf(const flatbuffers::Vector<std::uint8_t>* vector) {
    return {reinterpret_cast<const std::byte*>(vector) + sizeof(flatbuffers::uoffset_t), lengthOf(vector)};
}

/// @return a string by its stored length, which may hold any bytes; it lies in the chunk
inline std::string_view storedText(const flatbuffers::String* text) {
    return {reinterpret_cast<const char*>(text) + sizeof(flatbuffers::uoffset_t), lengthOf(text)};
}

/// @return a string up to its first NUL; it lies in the chunk
inline std::string_view visibleText(const flatbuffers::String* text) {
    const std::string_view stored = storedText(text);
    return stored.substr(0, stored.find('\0'));
}

}  // namespace zeb::profiling
