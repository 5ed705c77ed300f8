#include "tests/support/scripted_backend.h"

#include "platform/winsys/backends.h"
#include "platform/winsys/wgl_extensions.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace karv_test
{
namespace
{

std::string Quoted(const std::wstring& title)
{
    std::string text = "\"";
    for (const wchar_t character : title)
        text += character < 128 ? static_cast<char>(character) : '?';
    return text + '"';
}

std::string AttributeName(int attribute)
{
    static const std::map<int, std::string> names{
        {WGL_DRAW_TO_WINDOW_ARB, "draw_to_window"},
        {WGL_ACCELERATION_ARB, "acceleration"},
        {WGL_SUPPORT_OPENGL_ARB, "support_opengl"},
        {WGL_DOUBLE_BUFFER_ARB, "double_buffer"},
        {WGL_PIXEL_TYPE_ARB, "pixel_type"},
        {WGL_COLOR_BITS_ARB, "color_bits"},
        {WGL_ALPHA_BITS_ARB, "alpha_bits"},
        {WGL_DEPTH_BITS_ARB, "depth_bits"},
        {WGL_STENCIL_BITS_ARB, "stencil_bits"},
        {WGL_SAMPLE_BUFFERS_ARB, "sample_buffers"},
        {WGL_SAMPLES_ARB, "samples"},
    };
    const auto found = names.find(attribute);
    return found != names.end() ? found->second : std::to_string(attribute);
}

std::string AttributeValue(int value)
{
    return value == WGL_FULL_ACCELERATION_ARB ? "full" : std::to_string(value);
}

std::string AttributeList(std::span<const int> attributes)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < attributes.size(); i += 2)
        text += (i == 0 ? "" : " ") + AttributeName(attributes[i]) + '=' + AttributeValue(attributes[i + 1]);
    return text;
}

int AskedSamples(std::span<const int> attributes)
{
    for (std::size_t i = 0; i + 1 < attributes.size(); i += 2)
        if (attributes[i] == WGL_SAMPLES_ARB)
            return attributes[i + 1];
    return 0;
}

} // namespace

ScriptedBackend& ScriptedBackend::Install()
{
    auto backend = std::make_unique<ScriptedBackend>();
    ScriptedBackend& installed = *backend;
    winsys::UseBackend(std::move(backend));
    return installed;
}

ScriptedBackend::ScriptedBackend() : event_descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

ScriptedBackend::~ScriptedBackend()
{
    close(event_descriptor_);
}

std::vector<std::string> ScriptedBackend::TakeLog()
{
    return std::exchange(log_, {});
}

void ScriptedBackend::DestroyLeftWindows()
{
    while (!live_windows_.empty())
        DestroyWindow(live_windows_.back());
}

void ScriptedBackend::QueueEvent(std::function<void(winsys::EventSink&)> event)
{
    events_.push_back(std::move(event));
    eventfd_write(event_descriptor_, 1);
}

std::string ScriptedBackend::Name() const
{
    return "scripted";
}

bool ScriptedBackend::CreateNativeWindow(HWND window, const winsys::NativeWindow& description)
{
    titles_[window] = Quoted(description.title);
    const bool made =
        !IsToFail(Call::CreateWindow) && HeadlessBackend::CreateNativeWindow(window, description);
    if (made)
        live_windows_.push_back(window);
    return Note("CreateWindow(" + NameOf(window) + ')', made);
}

void ScriptedBackend::DestroyNativeWindow(HWND window)
{
    Note("DestroyWindow(" + NameOf(window) + ')', true);
    std::erase(live_windows_, window);
    HeadlessBackend::DestroyNativeWindow(window);
}

void ScriptedBackend::SetNativeTitle(HWND window, const std::wstring& title)
{
    titles_[window] = Quoted(title);
    HeadlessBackend::SetNativeTitle(window, title);
}

int ScriptedBackend::EventDescriptor() const
{
    return event_descriptor_;
}

void ScriptedBackend::PumpEvents(winsys::EventSink& sink)
{
    while (!events_.empty()) {
        const auto event = std::move(events_.front());
        events_.pop_front();
        event(sink);
    }
    eventfd_t count = 0;
    eventfd_read(event_descriptor_, &count);
}

bool ScriptedBackend::SetNativePixelFormat(HWND window, int format)
{
    const bool set = !IsToFail(Call::SetPixelFormat) && HeadlessBackend::SetNativePixelFormat(window, format);
    return Note("SetPixelFormat(" + NameOf(window) + ", " + std::to_string(format) + ')', set);
}

bool ScriptedBackend::CreateContext(HGLRC context, HWND window, int format)
{
    const bool made =
        !IsToFail(Call::CreateContext) && HeadlessBackend::CreateContext(context, window, format);
    const std::string call = "wglCreateContext(" + NameOf(window) + ')';
    return Note(made ? call + " = " + NameOf(context) : call, made);
}

void ScriptedBackend::DeleteContext(HGLRC context)
{
    Note("wglDeleteContext(" + NameOf(context) + ')', true);
    HeadlessBackend::DeleteContext(context);
}

bool ScriptedBackend::MakeCurrent(HWND window, HGLRC context)
{
    const bool made = !IsToFail(Call::MakeCurrent) && HeadlessBackend::MakeCurrent(window, context);
    return Note("wglMakeCurrent(" + NameOf(window) + ", " + NameOf(context) + ')', made);
}

void ScriptedBackend::ReleaseCurrent()
{
    Note("wglMakeCurrent(none)", true);
    HeadlessBackend::ReleaseCurrent();
}

bool ScriptedBackend::SwapBuffers(HWND window)
{
    const bool swapped = !IsToFail(Call::SwapBuffers) && HeadlessBackend::SwapBuffers(window);
    return Note("SwapBuffers(" + NameOf(window) + ')', swapped);
}

std::optional<std::string> ScriptedBackend::Extensions()
{
    Note("wglGetExtensionsStringARB", true);
    return extensions_ ? *extensions_ : HeadlessBackend::Extensions();
}

bool ScriptedBackend::OffersEntryPoint(std::string_view name)
{
    return Note("wglGetProcAddress(" + std::string(name) + ')', !hidden_entry_points_.contains(name));
}

std::optional<std::vector<int>> ScriptedBackend::MatchFormats(std::span<const int> attributes)
{
    const auto refused = refused_samples_.find(AskedSamples(attributes));
    std::optional<std::vector<int>> matches;
    if (!IsToFail(Call::ChooseFormats)) {
        matches = HeadlessBackend::MatchFormats(attributes);
        if (refused != refused_samples_.end()) {
            matches =
                refused->second == Refusal::CallFails ? std::nullopt : std::optional(std::vector<int>{});
        }
    }
    const std::string found = !matches           ? ""
                              : matches->empty() ? " = none"
                                                 : " = " + std::to_string(matches->front());
    Note("wglChoosePixelFormatARB(" + AttributeList(attributes) + ')' + found, matches.has_value());
    return matches;
}

bool ScriptedBackend::IsToFail(Call call)
{
    return failures_[call].contains(++calls_[call]);
}

bool ScriptedBackend::Note(const std::string& call, bool succeeded)
{
    log_.push_back(succeeded ? call : call + " failed");
    return succeeded;
}

std::string ScriptedBackend::NameOf(HWND window) const
{
    const auto found = titles_.find(window);
    return found != titles_.end() ? found->second : "?";
}

std::string ScriptedBackend::NameOf(HGLRC context)
{
    const int next = static_cast<int>(context_numbers_.size()) + 1;
    return "context " + std::to_string(context_numbers_.try_emplace(context, next).first->second);
}

} // namespace karv_test
