// Types of values in binary DXF files, which follow from the group codes.
#pragma once

#include <optional>

namespace viewer
{

enum class DxfValueType {
    Text,    ///< ends with a zero byte
    Real,    ///< 8 bytes
    Byte,    ///< a truth value
    Short,   ///< a signed number of 2 bytes
    Integer, ///< a signed number of 4 bytes
    Long,    ///< a signed number of 8 bytes
    Chunk,   ///< a byte with the length, and that many bytes
};

/// The type of the values of a group; no value for codes that no file has.
[[nodiscard]] std::optional<DxfValueType> TypeOfCode(int code);

} // namespace viewer
