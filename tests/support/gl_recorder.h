// The recorder stands before the OpenGL and GLU entry points that the module calls: the test program's own
// definitions pre-empt the libraries', note each call with its arguments and pass it on. Calls that GLU makes
// inside itself are passed on unheard; the module's tessellator callbacks are heard. Hooks and answers stage
// failures that no driver offers on demand.
//
// It knows nothing of the module. One thread. Calls that a test itself makes while it records are heard too,
// but for those that the module never uses (glReadPixels, glIsEnabled, glGetFloatv, ...). The program must be
// linked with its symbols exported.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace karv_test
{

/// One call of an entry point.
struct GlCall {
    std::string name; ///< "glOrtho"
    std::string text; ///< "glOrtho(-5, 5, 5, -5, -1000, 1000)", numbers to six digits, tiny ones as 0
    std::vector<double>
        values; ///< every argument exactly as passed: enums and pointers by value, arrays element by element
};

/// Hears the calls made during its life. Of several at once the innermost hears.
class GlRecording
{
  public:
    GlRecording();
    GlRecording(const GlRecording&) = delete;
    GlRecording& operator=(const GlRecording&) = delete;
    ~GlRecording();

    [[nodiscard]] const std::vector<GlCall>& Calls() const { return calls_; }
    /// The calls' texts in order.
    [[nodiscard]] std::vector<std::string> Listing() const;
    /// The number of calls of one entry point.
    [[nodiscard]] int Count(std::string_view name) const;
    /// The call number `index`, from 0, of one entry point. Throws std::out_of_range where there is none.
    [[nodiscard]] const GlCall& Call(std::string_view name, int index = 0) const;
    /// The names of the enums heard that neither OpenGL 1.1 nor GLU know; they outlive `Clear`.
    [[nodiscard]] const std::set<std::string>& EnumsBeyond11() const { return beyond_11_; }
    void Clear() { calls_.clear(); }

    void Note(GlCall call) { calls_.push_back(std::move(call)); }
    void NoteEnum(unsigned value);

  private:
    std::vector<GlCall> calls_;
    std::set<std::string> beyond_11_;
    GlRecording* outer_;
};

/// Runs `action` at every call of an entry point, after it was noted and before it is passed on, with the
/// number of the call since the hook was made, from 1. An exception that it throws leaves the entry point in
/// place of the call.
class GlHook
{
  public:
    GlHook(std::string name, std::function<void(int)> action);
    GlHook(const GlHook&) = delete;
    GlHook& operator=(const GlHook&) = delete;
    ~GlHook();

    /// For the entry points.
    void Run(std::string_view name);

  private:
    std::string name_;
    std::function<void(int)> action_;
    int calls_ = 0;
};

/// A hook that throws `fault`, of whatever type, from the call number `nth`, from 1.
template <typename Fault>
[[nodiscard]] GlHook ThrowAt(std::string name, int nth, Fault fault)
{
    return GlHook(std::move(name), [nth, fault](int call) {
        if (call == nth)
            throw fault;
    });
}

/// Answers an entry point with `result` (an integer, or a pointer's bits; 0 for null) in place of the
/// library, where given only for calls with that first argument: GlAnswer("glGetString", 0, GL_EXTENSIONS).
class GlAnswer
{
  public:
    GlAnswer(std::string name, std::uintptr_t result, std::optional<double> first_argument = std::nullopt);
    GlAnswer(const GlAnswer&) = delete;
    GlAnswer& operator=(const GlAnswer&) = delete;
    ~GlAnswer();

    /// For the entry points: the result where this call is answered.
    [[nodiscard]] std::optional<std::uintptr_t> For(const GlCall& call) const;

  private:
    std::string name_;
    std::uintptr_t result_;
    std::optional<double> first_argument_;
};

/// Makes `glEnable` and `glDisable` refuse a capability as a driver does that does not know it: the call
/// raises GL_INVALID_ENUM and changes nothing.
class GlRefusal
{
  public:
    explicit GlRefusal(unsigned capability);
    GlRefusal(const GlRefusal&) = delete;
    GlRefusal& operator=(const GlRefusal&) = delete;
    ~GlRefusal();

    [[nodiscard]] unsigned Capability() const { return capability_; }

  private:
    unsigned capability_;
};

} // namespace karv_test
