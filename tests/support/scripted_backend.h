// A headless backend for cases that no driver produces on demand: it refuses and fails chosen calls, answers
// any extension string, reports native events, and logs the calls that it receives.
//
//     ScriptedBackend& backend = ScriptedBackend::Install();
//     backend.RefuseSamples(4, Refusal::NoFormat);              // a query for 4 samples finds no format
//     backend.SetExtensions("WGL_ARB_pixel_format");            // the extension string
//     backend.HideEntryPoint("wglChoosePixelFormatARB");        // wglGetProcAddress answers null
//     backend.FailNth(Call::CreateContext, 2);                  // the second wglCreateContext from now
//     ... create and drive a control ...
//     EXPECT_THAT(backend.TakeLog(),
//                 testing::ElementsAre("CreateWindow(\"Dummy\")", "SetPixelFormat(\"Dummy\", 8)", ...));
//     backend.DestroyLeftWindows();                             // windows that the subject leaks by design
#pragma once

#include "platform/winsys/headless/headless_backend.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace karv_test
{

/// The calls that can be made to fail.
enum class Call { CreateWindow, SetPixelFormat, CreateContext, MakeCurrent, SwapBuffers, ChooseFormats };

/// How a query for a number of samples fails: the call returns FALSE, or TRUE with a count of 0.
enum class Refusal { CallFails, NoFormat };

class ScriptedBackend : public winsys::HeadlessBackend
{
  public:
    /// Installs a new one as the backend of the process, which owns it until another is installed. No window
    /// may exist.
    static ScriptedBackend& Install();

    ScriptedBackend();
    ~ScriptedBackend() override;

    /// Sets the answer of wglGetExtensionsStringARB; none is null. Without this call it answers like other
    /// backends.
    void SetExtensions(std::optional<std::string> words) { extensions_ = std::move(words); }
    /// wglGetProcAddress no longer finds this entry point.
    void HideEntryPoint(const std::string& name) { hidden_entry_points_.insert(name); }
    /// Queries of wglChoosePixelFormatARB for exactly this number of samples fail. Other queries are answered
    /// normally; the formats of EGL have 4 samples, which is also the answer to a query for 2.
    void RefuseSamples(int samples, Refusal refusal) { refused_samples_[samples] = refusal; }
    /// The n-th call of this kind from now fails, 1 being the next; it is not forwarded.
    void FailNth(Call call, int n) { failures_[call].insert(calls_[call] + n); }

    /// The calls since the start or the last `TakeLog`, one per line: windows by their titles, contexts by
    /// their number in order of creation, "failed" after a refused call.
    std::vector<std::string> TakeLog();
    /// Windows that exist, in order of creation.
    [[nodiscard]] std::vector<HWND> LiveWindows() const { return live_windows_; }
    /// Destroys every window that still exists.
    void DestroyLeftWindows();

    /// Reports this as a native event on the next `PumpEvents`; until then the event descriptor is readable.
    void QueueEvent(std::function<void(winsys::EventSink&)> event);

    [[nodiscard]] std::string Name() const override;
    bool CreateNativeWindow(HWND window, const winsys::NativeWindow& description) override;
    void DestroyNativeWindow(HWND window) override;
    void SetNativeTitle(HWND window, const std::wstring& title) override;
    [[nodiscard]] int EventDescriptor() const override;
    void PumpEvents(winsys::EventSink& sink) override;
    bool SetNativePixelFormat(HWND window, int format) override;
    bool CreateContext(HGLRC context, HWND window, int format) override;
    void DeleteContext(HGLRC context) override;
    bool MakeCurrent(HWND window, HGLRC context) override;
    void ReleaseCurrent() override;
    bool SwapBuffers(HWND window) override;
    [[nodiscard]] std::optional<std::string> Extensions() override;
    [[nodiscard]] bool OffersEntryPoint(std::string_view name) override;
    [[nodiscard]] std::optional<std::vector<int>> MatchFormats(std::span<const int> attributes) override;

  private:
    bool IsToFail(Call call);
    /// Logs the call and its outcome, and returns the outcome.
    bool Note(const std::string& call, bool succeeded);
    [[nodiscard]] std::string NameOf(HWND window) const;
    [[nodiscard]] std::string NameOf(HGLRC context);

    std::vector<std::string> log_;
    std::map<Call, int> calls_;
    std::map<Call, std::set<int>> failures_;
    std::map<HWND, std::string> titles_;
    std::vector<HWND> live_windows_;
    std::map<HGLRC, int> context_numbers_;
    std::optional<std::optional<std::string>> extensions_;
    std::set<std::string, std::less<>> hidden_entry_points_;
    std::map<int, Refusal> refused_samples_;
    std::deque<std::function<void(winsys::EventSink&)>> events_;
    int event_descriptor_;
};

} // namespace karv_test
