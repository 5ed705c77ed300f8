#include "viewer/import/dxf/binary_values.h"

#include <algorithm>
#include <array>

namespace viewer
{

namespace
{

/// The codes from that of the previous range on, up to this one.
struct CodeRange {
    int last = 0;
    std::optional<DxfValueType> type;
};

constexpr std::array kRanges{CodeRange{-1, std::nullopt},           CodeRange{9, DxfValueType::Text},
                             CodeRange{59, DxfValueType::Real},     CodeRange{79, DxfValueType::Short},
                             CodeRange{89, std::nullopt},           CodeRange{99, DxfValueType::Integer},
                             CodeRange{109, DxfValueType::Text},    CodeRange{149, DxfValueType::Real},
                             CodeRange{159, std::nullopt},          CodeRange{169, DxfValueType::Long},
                             CodeRange{179, DxfValueType::Short},   CodeRange{209, std::nullopt},
                             CodeRange{239, DxfValueType::Real},    CodeRange{269, std::nullopt},
                             CodeRange{289, DxfValueType::Short},   CodeRange{299, DxfValueType::Byte},
                             CodeRange{309, DxfValueType::Text},    CodeRange{319, DxfValueType::Chunk},
                             CodeRange{369, DxfValueType::Text},    CodeRange{389, DxfValueType::Short},
                             CodeRange{399, DxfValueType::Text},    CodeRange{409, DxfValueType::Short},
                             CodeRange{419, DxfValueType::Text},    CodeRange{429, DxfValueType::Integer},
                             CodeRange{439, DxfValueType::Text},    CodeRange{459, DxfValueType::Integer},
                             CodeRange{469, DxfValueType::Real},    CodeRange{481, DxfValueType::Text},
                             CodeRange{998, std::nullopt},          CodeRange{1003, DxfValueType::Text},
                             CodeRange{1004, DxfValueType::Chunk},  CodeRange{1009, DxfValueType::Text},
                             CodeRange{1059, DxfValueType::Real},   CodeRange{1070, DxfValueType::Short},
                             CodeRange{1071, DxfValueType::Integer}};

} // namespace

std::optional<DxfValueType> TypeOfCode(int code)
{
    const auto range = std::find_if(kRanges.begin(), kRanges.end(),
                                    [&](const CodeRange& candidate) { return code <= candidate.last; });
    return range == kRanges.end() ? std::nullopt : range->type;
}

} // namespace viewer
