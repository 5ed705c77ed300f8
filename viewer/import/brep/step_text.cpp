#include "viewer/import/brep/step_text.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <utility>

namespace viewer
{

namespace
{

/// The end of a text that begins at `at`, behind its second quote.
std::size_t EndOfString(std::string_view text, std::size_t at)
{
    const std::size_t end = text.find('\'', at + 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

/// The next place of one of the characters outside of texts and comments; the text's size if there is none.
std::size_t FindOutside(std::string_view text, std::size_t at, std::string_view characters)
{
    while (at < text.size()) {
        if (text[at] == '\'') {
            at = EndOfString(text, at);
        } else if (text[at] == '/' && at + 1 < text.size() && text[at + 1] == '*') {
            const std::size_t end = text.find("*/", at + 2);
            at = end == std::string_view::npos ? text.size() : end + 2;
        } else if (characters.find(text[at]) != std::string_view::npos) {
            return at;
        } else {
            ++at;
        }
    }
    return text.size();
}

StepId ReadId(std::string_view text)
{
    StepId id = 0;
    std::from_chars(text.data(), text.data() + text.size(), id);
    return id;
}

/// The values between commas.
std::vector<std::string_view> Divide(std::string_view text)
{
    std::vector<std::string_view> values;
    std::size_t start = 0;
    int depth = 0;
    for (std::size_t at = FindOutside(text, 0, "(),"); at < text.size();
         at = FindOutside(text, at + 1, "(),")) {
        if (text[at] == '(') {
            ++depth;
        } else if (text[at] == ')') {
            --depth;
        } else if (depth == 0) {
            values.push_back(Trimmed(text.substr(start, at - start)));
            start = at + 1;
        }
    }
    values.push_back(Trimmed(text.substr(start)));
    return values;
}

/// The factor of an SI prefix, as in ".MILLI.", for metres to millimetres.
std::optional<double> MillimetersOf(std::string_view unit)
{
    if (unit.find(".METRE.") == std::string_view::npos)
        return std::nullopt;
    constexpr std::array<std::pair<std::string_view, double>, 7> kPrefixes{{{".KILO.", 1e6},
                                                                            {".DECI.", 100.0},
                                                                            {".CENTI.", 10.0},
                                                                            {".MILLI.", 1.0},
                                                                            {".MICRO.", 1e-3},
                                                                            {".NANO.", 1e-6},
                                                                            {".PICO.", 1e-9}}};
    for (const auto& [prefix, factor] : kPrefixes)
        if (unit.find(prefix) != std::string_view::npos)
            return factor;
    return 1000.0;
}

std::optional<double> MillimetersOf(const StepText& text, StepId unit)
{
    const std::string_view whole = text.WholeOf(unit);
    if (whole.find("LENGTH_UNIT") == std::string_view::npos)
        return std::nullopt;
    const std::size_t conversion = whole.find("CONVERSION_BASED_UNIT");
    if (conversion == std::string_view::npos)
        return MillimetersOf(whole);
    for (const StepId measure : StepReferences(whole.substr(conversion))) {
        const std::vector<std::string_view> values = text.ValuesOf(measure);
        if (values.size() < 2)
            continue;
        const std::vector<double> number = StepNumbers(values[0]);
        const std::optional<double> base = MillimetersOf(text.WholeOf(StepReference(values[1])));
        if (number.size() == 1 && base)
            return number[0] * *base;
    }
    return std::nullopt;
}

} // namespace

StepText::StepText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    text_.assign(std::istreambuf_iterator<char>(file), {});
    const std::string_view text = text_;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = FindOutside(text, at, ";");
        const std::size_t start = FindOutside(text, at, "#;=");
        if (start < end && text[start] == '#') {
            const std::size_t equals = FindOutside(text, start, "=;");
            const StepId id = ReadId(text.substr(start + 1));
            if (equals < end && id != 0 &&
                entities_.emplace(id, Trimmed(text.substr(equals + 1, end - equals - 1))).second)
                order_.push_back(id);
        }
        at = end + 1;
    }
}

std::string_view StepText::WholeOf(StepId id) const
{
    const auto entity = entities_.find(id);
    return entity != entities_.end() ? entity->second : std::string_view();
}

std::string_view StepText::TypeOf(StepId id) const
{
    const std::string_view whole = WholeOf(id);
    return Trimmed(whole.substr(0, std::min(whole.find('('), whole.size())));
}

std::vector<StepId> StepText::OfType(std::string_view type) const
{
    std::vector<StepId> found;
    std::copy_if(order_.begin(), order_.end(), std::back_inserter(found),
                 [&](StepId id) { return TypeOf(id) == type; });
    return found;
}

std::vector<std::string_view> StepText::ValuesOf(StepId id) const
{
    const std::string_view whole = WholeOf(id);
    const std::size_t open = whole.find('(');
    const std::size_t close = whole.rfind(')');
    if (open == std::string_view::npos || open == 0 || close == std::string_view::npos || close < open)
        return {};
    return Divide(whole.substr(open + 1, close - open - 1));
}

std::optional<double> StepText::FirstLengthUnit() const
{
    for (const StepId id : order_)
        if (WholeOf(id).find("GLOBAL_UNIT_ASSIGNED_CONTEXT") != std::string_view::npos)
            if (const auto unit = LengthUnitOf(*this, id))
                return unit;
    return std::nullopt;
}

std::optional<double> LengthUnitOf(const StepText& text, StepId context)
{
    for (const StepId unit : StepReferences(text.WholeOf(context)))
        if (const auto length = MillimetersOf(text, unit))
            return length;
    return std::nullopt;
}

StepId StepReference(std::string_view value)
{
    return value.starts_with('#') ? ReadId(value.substr(1)) : 0;
}

std::vector<StepId> StepReferences(std::string_view value)
{
    std::vector<StepId> ids;
    for (std::size_t at = FindOutside(value, 0, "#"); at < value.size(); at = FindOutside(value, at + 1, "#"))
        if (const StepId id = ReadId(value.substr(at + 1)))
            ids.push_back(id);
    return ids;
}

std::vector<double> StepNumbers(std::string_view value)
{
    std::vector<double> numbers;
    for (std::size_t at = FindOutside(value, 0, "+-.0123456789"); at < value.size();
         at = FindOutside(value, at, "+-.0123456789")) {
        if (value[at] == '+')
            ++at;
        double number = 0.0;
        const auto [end, error] = std::from_chars(value.data() + at, value.data() + value.size(), number);
        if (error == std::errc())
            numbers.push_back(number);
        at = std::max(at + 1, static_cast<std::size_t>(end - value.data()));
    }
    return numbers;
}

std::vector<std::vector<double>> StepNumberLists(std::string_view value)
{
    std::vector<std::vector<double>> lists;
    if (!value.starts_with('(') || !value.ends_with(')') || value.size() < 2)
        return lists;
    for (const std::string_view inner : Divide(value.substr(1, value.size() - 2)))
        if (std::vector<double> numbers = StepNumbers(inner); !numbers.empty())
            lists.push_back(std::move(numbers));
    return lists;
}

std::string StepString(std::string_view value)
{
    if (value.size() < 2 || value.front() != '\'' || value.back() != '\'')
        return {};
    return std::string(Trimmed(OneLine(value.substr(1, value.size() - 2))));
}

bool FileHasOneOf(const std::string& path, std::span<const std::string_view> words)
{
    constexpr std::size_t kBlock = 1U << 20U;
    constexpr std::size_t kOverlap = 64;
    std::ifstream file(path, std::ios::binary);
    std::string text;
    std::string block(kBlock, '\0');
    while (file.read(block.data(), static_cast<std::streamsize>(kBlock)) || file.gcount() > 0) {
        text += std::string_view(block).substr(0, static_cast<std::size_t>(file.gcount()));
        for (const std::string_view word : words)
            if (text.find(word) != std::string::npos)
                return true;
        text.erase(0, text.size() - std::min(text.size(), kOverlap));
    }
    return false;
}

} // namespace viewer
