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
    /// `list` has names and values by turns and a null pointer at its end.
    explicit XmlAttributes(const char** list) : list_(list) {}

    /// Empty if there is no such attribute.
    [[nodiscard]] std::string_view At(std::string_view name) const;
    /// Otherwise `fallback`.
    [[nodiscard]] long long IntegerAt(std::string_view name, long long fallback) const;
    /// Not a number if there is none.
    [[nodiscard]] double NumberAt(std::string_view name) const;

  private:
    const char** list_;
};

/// Calls functions at the start and the end of each element, with its name without a prefix. Exceptions of these
/// functions end the reading and are thrown again by `Feed`.
class XmlReader
{
  public:
    using StartFunction = std::function<void(std::string_view name, const XmlAttributes& attributes)>;
    using EndFunction = std::function<void(std::string_view name)>;

    XmlReader(StartFunction on_start, EndFunction on_end);
    XmlReader(const XmlReader&) = delete; // the parser knows its address
    XmlReader& operator=(const XmlReader&) = delete;
    ~XmlReader() = default;

    /// Takes the next block of the text, at the end an empty one. Returns false for text that is not well-formed.
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
