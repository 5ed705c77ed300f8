#include "viewer/import/brep/part_counts.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

constexpr std::size_t kMaxTypes = 10000;
constexpr std::size_t kMaxTypeLength = 80;

using Counts = std::map<std::string, std::size_t>;

void Count(Counts& counts, const std::string& type)
{
    if (counts.size() < kMaxTypes || counts.contains(type))
        ++counts[type];
}

/// Counts the entities of a STEP file: "#12=TYPE(", or the first type of a complex one, "#12=(TYPE(".
class StepTypes
{
  public:
    void Take(char c)
    {
        if (c == '\'')
            in_text_ = !in_text_;
        if (in_text_ || std::isspace(static_cast<unsigned char>(c)) != 0)
            return;
        const auto letter = static_cast<unsigned char>(c);
        if (c == ';')
            state_ = State::Start;
        else if (state_ == State::Start)
            state_ = c == '#' ? State::Number : State::Other;
        else if (state_ == State::Number && c == '=')
            state_ = State::Type;
        else if (state_ == State::Number && std::isdigit(letter) == 0)
            state_ = State::Other;
        else if (state_ == State::Type)
            TakeOfType(c, letter);
    }

    [[nodiscard]] const Counts& Found() const { return counts_; }

  private:
    enum class State { Start, Number, Type, Other };

    void TakeOfType(char c, unsigned char letter)
    {
        if (std::isalnum(letter) != 0 || c == '_') {
            if (type_.size() < kMaxTypeLength)
                type_ += c;
            return;
        }
        if (c == '(' && type_.empty())
            return;
        if (c == '(')
            Count(counts_, type_);
        type_.clear();
        state_ = State::Other;
    }

    State state_ = State::Start;
    bool in_text_ = false;
    std::string type_;
    Counts counts_;
};

Counts StepCounts(std::istream& file)
{
    constexpr std::size_t kBlock = 65536;
    StepTypes types;
    std::string block(kBlock, '\0');
    while (file.read(block.data(), static_cast<std::streamsize>(kBlock)) || file.gcount() > 0)
        for (std::streamsize i = 0; i < file.gcount(); ++i)
            types.Take(block[static_cast<std::size_t>(i)]);
    return types.Found();
}

/// Each entity has two lines of 80 columns in section D. Its type is the first number of both.
Counts IgesCounts(std::istream& file)
{
    constexpr std::size_t kSectionColumn = 72;
    constexpr std::size_t kTypeColumns = 8;
    Counts counts;
    bool is_first = true;
    for (std::string line; std::getline(file, line);) {
        if (line.size() <= kSectionColumn || line[kSectionColumn] != 'D')
            continue;
        std::string type = line.substr(0, kTypeColumns);
        std::erase_if(type, [](unsigned char c) { return std::isdigit(c) == 0; });
        if (is_first)
            Count(counts, "of type " + type);
        is_first = !is_first;
    }
    return counts;
}

} // namespace

std::string EntityCounts(const std::string& path, BrepKind kind)
{
    constexpr std::size_t kMaxNamed = 5;
    std::ifstream file(path, std::ios::binary);
    Counts counts;
    if (kind == BrepKind::Step)
        counts = StepCounts(file);
    else if (kind == BrepKind::Iges)
        counts = IgesCounts(file);
    std::vector<std::pair<std::string, std::size_t>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::string text;
    for (std::size_t i = 0; i < std::min(sorted.size(), kMaxNamed); ++i)
        text += (i > 0 ? ", " : "") + std::to_string(sorted[i].second) + " " + sorted[i].first;
    if (sorted.size() > kMaxNamed)
        text += " and entities of " + std::to_string(sorted.size() - kMaxNamed) + " other types";
    return text;
}

} // namespace viewer
