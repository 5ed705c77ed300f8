#include "viewer/import/dxf/text_decoder.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include <iconv.h>

namespace viewer
{

namespace
{

constexpr char32_t kReplacement = 0xFFFD;
constexpr const char* kWestern = "CP1252";

bool IsDigits(std::string_view text)
{
    return !text.empty() && text.size() <= 5 &&
           std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

/// The name that iconv has for a code page. Only names of known forms are handed to it.
std::string ConverterOf(std::string_view code_page)
{
    using Entry = std::pair<std::string_view, const char*>;
    static constexpr std::array kNames = {
        Entry{"ansi_1361", "JOHAB"}, Entry{"johab", "JOHAB"},         Entry{"big5", "CP950"},
        Entry{"gb2312", "CP936"},    Entry{"ksc5601", "CP949"},       Entry{"mac-roman", "MACINTOSH"},
        Entry{"ascii", kWestern},    Entry{"macintosh", "MACINTOSH"},
    };
    const std::string name = LowerCase(Trimmed(code_page));
    if (const auto* found = std::ranges::find(kNames, name, &Entry::first); found != kNames.end())
        return found->second;
    for (const auto& [start, converter] : {Entry{"ansi_", "CP"}, Entry{"dos_", "CP"}, Entry{"dos", "CP"},
                                           Entry{"iso8859-", "ISO-8859-"}, Entry{"iso_8859-", "ISO-8859-"}})
        if (name.starts_with(start) && IsDigits(std::string_view(name).substr(start.size())))
            return converter + name.substr(start.size());
    return kWestern;
}

bool IsOfTwoBytes(std::string_view converter)
{
    static constexpr std::array<std::string_view, 5> kPages = {"CP932", "CP936", "CP949", "CP950", "JOHAB"};
    return std::ranges::find(kPages, converter) != kPages.end();
}

/// The value of this many hexadecimal digits; none if there are fewer.
std::optional<char32_t> HexAt(std::u32string_view text, std::size_t start, std::size_t count)
{
    if (text.size() < start + count)
        return std::nullopt;
    char32_t value = 0;
    for (const char32_t c : text.substr(start, count)) {
        const char32_t letter = c >= U'a' && c <= U'f' ? c - U'a' + U'A' : c;
        if (letter >= U'0' && letter <= U'9')
            value = value * 16 + (letter - U'0');
        else if (letter >= U'A' && letter <= U'F')
            value = value * 16 + (letter - U'A' + 10);
        else
            return std::nullopt;
    }
    return value;
}

} // namespace

/// A converter of the system. Without one, bytes are taken for Latin-1.
class DxfTextDecoder::CodePage
{
  public:
    explicit CodePage(const std::string& name) : converter_(iconv_open("UTF-32LE", name.c_str())) {}
    ~CodePage()
    {
        if (IsOpen())
            iconv_close(converter_);
    }
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    [[nodiscard]] bool IsOpen() const { return converter_ != reinterpret_cast<iconv_t>(-1); }

    /// The text, with a replacement for each byte that is not valid. `is_valid` tells if there was none.
    std::u32string Convert(std::string_view bytes, bool& is_valid)
    {
        is_valid = true;
        std::u32string text;
        if (!IsOpen()) {
            for (const char c : bytes)
                text += static_cast<unsigned char>(c);
            return text;
        }
        iconv(converter_, nullptr, nullptr, nullptr, nullptr);
        std::vector<char> source(bytes.begin(), bytes.end());
        std::vector<char32_t> target(bytes.size() * 2 + 4);
        char* from = source.data();
        std::size_t left = source.size();
        while (left > 0) {
            char* to = reinterpret_cast<char*>(target.data());
            std::size_t room = target.size() * sizeof(char32_t);
            const std::size_t result = iconv(converter_, &from, &left, &to, &room);
            const std::size_t used = target.size() * sizeof(char32_t) - room;
            text.append(target.data(), used / sizeof(char32_t));
            if (result != static_cast<std::size_t>(-1))
                break;
            is_valid = false;
            text += kReplacement;
            ++from;
            --left;
        }
        return text;
    }

  private:
    iconv_t converter_;
};

DxfTextDecoder::DxfTextDecoder() = default;
DxfTextDecoder::~DxfTextDecoder() = default;
DxfTextDecoder::DxfTextDecoder(DxfTextDecoder&&) noexcept = default;
DxfTextDecoder& DxfTextDecoder::operator=(DxfTextDecoder&&) noexcept = default;

DxfTextDecoder::DxfTextDecoder(std::string_view version, std::string_view code_page)
{
    const bool is_unicode = version >= "AC1021" || LowerCase(Trimmed(code_page)) == "utf-8";
    if (!is_unicode)
        page_ = ConverterOf(code_page);
}

DxfTextDecoder::CodePage& DxfTextDecoder::PageOf(const std::string& name)
{
    std::unique_ptr<CodePage>& page = pages_[name];
    if (!page) {
        page = std::make_unique<CodePage>(name);
        if (!page->IsOpen() && name != kWestern)
            page = std::make_unique<CodePage>(kWestern);
    }
    return *page;
}

std::u32string DxfTextDecoder::Decode(std::string_view bytes)
{
    const bool is_ascii =
        std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (is_ascii && !IsOfTwoBytes(page_))
        return {bytes.begin(), bytes.end()};
    bool is_valid = false;
    std::u32string text;
    if (!IsOfTwoBytes(page_))
        text = PageOf("UTF-8").Convert(bytes, is_valid);
    if (is_valid || page_.empty())
        return text;
    return PageOf(page_).Convert(bytes, is_valid);
}

char32_t DxfTextDecoder::CharacterOf(unsigned char byte)
{
    const std::u32string decoded = Decode(std::string(1, static_cast<char>(byte)));
    return decoded.size() == 1 && decoded[0] != kReplacement ? decoded[0] : byte;
}

std::optional<DxfEscape> DxfTextDecoder::EscapeAt(std::u32string_view text)
{
    static constexpr std::array kPages = {"CP932", "CP950", "CP949", "JOHAB", "CP936"};
    if (text.starts_with(U"\\U+"))
        if (const auto number = HexAt(text, 3, 4))
            return DxfEscape{*number, 7};
    if (!text.starts_with(U"\\M+") || text.size() < 4 || text[3] < U'1' || text[3] > U'5')
        return std::nullopt;
    const auto number = HexAt(text, 4, 4);
    if (!number)
        return std::nullopt;
    const std::string bytes = {static_cast<char>(*number >> 8U), static_cast<char>(*number & 0xFFU)};
    bool is_valid = false;
    const std::u32string decoded = PageOf(kPages.at(text[3] - U'1')).Convert(bytes, is_valid);
    return DxfEscape{decoded.empty() ? kReplacement : decoded.front(), 8};
}

} // namespace viewer
