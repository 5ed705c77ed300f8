// Records the OpenGL and GLU calls of the module: the test program's own definitions pre-empt the libraries',
// record each call with its arguments and pass it on. Calls that GLU makes inside itself are passed on
// unrecorded; those of the module's tessellator callbacks are recorded. Hooks and answers stage failures that
// no driver offers on demand.
//
// It knows nothing of the module. For one thread. A test's own calls are recorded too, except those that the
// module never uses (glReadPixels, glIsEnabled, glGetFloatv, ...). The program must be linked with its
// symbols exported.
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
    std::string text; ///< "glOrtho(-5, 5, 5, -5, -1000, 1000)", numbers with six digits, tiny ones as 0
    std::vector<double>
        values; ///< every argument exactly as passed: enums and pointers by value, arrays element by element
};

/// Records the calls made during its life. Of nested recordings only the innermost records.
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
    /// The call number `index`, from 0, of one entry point. Throws std::out_of_range if there is none.
    [[nodiscard]] const GlCall& Call(std::string_view name, int index = 0) const;
    /// The names of the recorded enums that are of neither OpenGL 1.1 nor GLU; `Clear` keeps them.
    [[nodiscard]] const std::set<std::string>& EnumsBeyond11() const { return beyond_11_; }
    void Clear() { calls_.clear(); }

    void Note(GlCall call) { calls_.push_back(std::move(call)); }
    void NoteEnum(unsigned value);

  private:
    std::vector<GlCall> calls_;
    std::set<std::string> beyond_11_;
    GlRecording* outer_;
};

/// Runs `action` at every call of an entry point, after the call is recorded and before it is passed on.
/// `action` gets the number of the call, counted from 1 since the hook was made. If it throws, the exception
/// leaves the entry point and the call is not passed on.
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

/// A hook that throws `fault`, of any type, at the call number `nth`, from 1.
template <typename Fault>
[[nodiscard]] GlHook ThrowAt(std::string name, int nth, Fault fault)
{
    return GlHook(std::move(name), [nth, fault](int call) {
        if (call == nth)
            throw fault;
    });
}

/// Makes an entry point return `result` (an integer, or a pointer's bits; 0 for null) without calling the
/// library. With a first argument given, only calls with that argument are answered: GlAnswer("glGetString",
/// 0, GL_EXTENSIONS).
class GlAnswer
{
  public:
    GlAnswer(std::string name, std::uintptr_t result, std::optional<double> first_argument = std::nullopt);
    GlAnswer(const GlAnswer&) = delete;
    GlAnswer& operator=(const GlAnswer&) = delete;
    ~GlAnswer();

    /// For the entry points: the result, if this call is answered.
    [[nodiscard]] std::optional<std::uintptr_t> For(const GlCall& call) const;

  private:
    std::string name_;
    std::uintptr_t result_;
    std::optional<double> first_argument_;
};

/// Makes `glEnable` and `glDisable` refuse a capability, as a driver does that does not support it: the call
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
