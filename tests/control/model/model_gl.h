// The calls of OpenGL and of the window system that the model expects, by name with the arguments that it can
// compute, and a count of the rules that the sequences have met. It knows neither camera nor control.
#pragma once

#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace karv_model
{

/// A call with its arguments, without pointers, every number widened to double.
struct ExpectedCall {
    std::string_view name;
    std::vector<double> values;
};

using GlStream = std::vector<ExpectedCall>;

inline void Expect(GlStream& gl, std::string_view name, std::initializer_list<double> values = {})
{
    gl.push_back({name, values});
}

/// How often each rule of the model was applied in this process. A rule that no sequence meets is not tested.
[[nodiscard]] inline std::map<std::string_view, long>& RulesMet()
{
    static std::map<std::string_view, long> tally;
    return tally;
}

inline void Meet(std::string_view rule)
{
    ++RulesMet()[rule];
}

} // namespace karv_model
