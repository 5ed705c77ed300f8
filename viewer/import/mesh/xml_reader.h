// Reads XML as a stream of elements.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace viewer
{

/// The attributes of an element, by names without their prefixes.
class XmlAttributes
{
  public:
    /// `list` alternates names and values and ends with a null pointer. It must outlive the object.
    explicit XmlAttributes(const char** list) : list_(list) {}

    /// The value of an attribute; empty if there is none.
    [[nodiscard]] std::string_view At(std::string_view name) const;
    /// The value; `fallback` if there is none or it is not an integer.
    [[nodiscard]] long long IntegerAt(std::string_view name, long long fallback) const;
    /// The value; NaN if there is none or it is not a number.
    [[nodiscard]] double NumberAt(std::string_view name) const;

  private:
    const char** list_;
};

/// Calls functions at the start and the end of each element, with its name without a prefix. An exception of
/// such a function ends the reading; `Feed` throws it again.
class XmlReader
{
  public:
    using StartFunction = std::function<void(std::string_view name, const XmlAttributes& attributes)>;
    using EndFunction = std::function<void(std::string_view name)>;

    XmlReader(StartFunction on_start, EndFunction on_end);
    XmlReader(const XmlReader&) = delete; // the parser has a pointer to the object
    XmlReader& operator=(const XmlReader&) = delete;
    ~XmlReader() = default;

    /// Parses the next block of the text. The last block may be empty. Returns false for text that is not
    /// well-formed.
    [[nodiscard]] bool Feed(std::span<const char> block, bool is_last);

  private:
    static void OnStart(void* self, const char* name, const char** attributes);
    static void OnEnd(void* self, const char* name);
    template <class Function>
    void Guard(const Function& function);

    std::shared_ptr<void> parser_;
    StartFunction on_start_;
    EndFunction on_end_;
    std::exception_ptr error_;
};

} // namespace viewer
