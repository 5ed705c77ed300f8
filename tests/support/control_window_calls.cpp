#include "tests/support/control_window_calls.h"

#include <dlfcn.h>

#include <algorithm>
#include <ranges>
#include <stdexcept>

namespace karv_test
{
namespace
{

struct CallState {
    WindowCalls* recording = nullptr; ///< the innermost recording
    std::vector<WindowRefusal*> refusals;
    std::vector<EntryPointAnswer*> answers;
};

CallState& State()
{
    static CallState state;
    return state;
}

std::string Narrow(std::wstring_view text)
{
    std::string narrow;
    for (const wchar_t letter : text)
        narrow.push_back(static_cast<char>(letter));
    return narrow;
}

/// The layer's definition. Its functions have C++ linkage, so the name is mangled.
template <typename Entry>
Entry FindInLayer(const char* mangled)
{
    void* found = dlsym(RTLD_NEXT, mangled);
    if (found == nullptr)
        throw std::logic_error("the layer offers no " + std::string(mangled));
    return reinterpret_cast<Entry>(found);
}

template <auto Entry>
decltype(Entry) Layer(const char* mangled)
{
    static const auto entry = FindInLayer<decltype(Entry)>(mangled);
    return entry;
}

bool IsRefused(std::string_view name)
{
    bool refused = false;
    for (WindowRefusal* refusal : State().refusals)
        refused = refusal->Refuses(name) || refused;
    return refused;
}

/// Records a call with its arguments as texts.
void Note(const std::string& name, const std::vector<std::string>& arguments)
{
    if (State().recording == nullptr)
        return;
    std::string text = name + "(";
    for (const std::string& argument : arguments)
        text += (text.ends_with('(') ? "" : ", ") + argument;
    State().recording->Mark(text + ")");
}

template <typename Handle>
std::string Name(Handle handle)
{
    return State().recording != nullptr ? State().recording->NameOf(handle) : std::string();
}

} // namespace

WindowCalls::WindowCalls() : outer_(State().recording)
{
    State().recording = this;
}

WindowCalls::~WindowCalls()
{
    State().recording = outer_;
}

int WindowCalls::Count(std::string_view text) const
{
    return static_cast<int>(std::count(listing_.begin(), listing_.end(), text));
}

const WindowCreation& WindowCalls::Creation(std::wstring_view name) const
{
    for (const WindowCreation& creation : creations_)
        if (creation.name == name)
            return creation;
    throw std::out_of_range("no window of that name was created");
}

std::string WindowCalls::NameOf(HWND window)
{
    if (window == nullptr)
        return "none";
    wchar_t title[64] = L"";
    if (::GetWindowTextW(window, title, 64) > 0)
        windows_[window] = Narrow(title);
    const auto found = windows_.find(window);
    return found != windows_.end() ? found->second : "window";
}

std::string WindowCalls::NameOf(HDC dc)
{
    if (dc == nullptr)
        return "no dc";
    if (const HWND window = ::WindowFromDC(dc); window != nullptr)
        dcs_[dc] = "dc of " + NameOf(window);
    const auto found = dcs_.find(dc);
    return found != dcs_.end() ? found->second : "dc";
}

std::string WindowCalls::NameOf(HGLRC context) const
{
    const auto found = std::find(contexts_.begin(), contexts_.end(), context);
    if (context == nullptr)
        return "none";
    return found != contexts_.end() ? "context " + std::to_string(found - contexts_.begin() + 1) : "context";
}

void WindowCalls::NoteDescriptor(const PIXELFORMATDESCRIPTOR* descriptor)
{
    if (descriptor != nullptr)
        descriptors_.push_back(*descriptor);
}

void WindowCalls::NoteDeviceContext(HWND window, HDC dc)
{
    device_contexts_.push_back(dc);
    dcs_[dc] = "dc of " + NameOf(window);
}

void WindowCalls::NoteContext(HGLRC context)
{
    if (context != nullptr)
        contexts_.push_back(context);
}

WindowRefusal::WindowRefusal(std::string name, int nth) : name_(std::move(name)), nth_(nth)
{
    State().refusals.push_back(this);
}

WindowRefusal::~WindowRefusal()
{
    std::erase(State().refusals, this);
}

bool WindowRefusal::Refuses(std::string_view name)
{
    if (name != name_)
        return false;
    ++calls_;
    return nth_ == 0 || calls_ == nth_;
}

EntryPointAnswer::EntryPointAnswer(std::string entry_point, PROC result)
    : entry_point_(std::move(entry_point)), result_(result)
{
    State().answers.push_back(this);
}

EntryPointAnswer::~EntryPointAnswer()
{
    std::erase(State().answers, this);
}

} // namespace karv_test

using namespace karv_test;

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID param)
{
    const std::wstring name = window_name != nullptr ? window_name : L"";
    Note(__func__, {Narrow(name)});
    WindowCalls* const recording = State().recording;
    std::size_t index = 0;
    if (recording != nullptr) {
        WindowCreation creation{ex_style, name, style, {x, y, width, height}, parent, menu, instance,
                                param,    {},   {}};
        ::GetClassInfoW(instance, class_name, &creation.window_class);
        index = recording->Creations().size();
        recording->NoteCreation(creation);
    }
    if (IsRefused(__func__))
        return nullptr;
    const HWND window =
        Layer<&CreateWindowExW>("_Z15CreateWindowExWjPKwS0_jiiiiP6HWND__P7HMENU__P11HINSTANCE__Pv")(
            ex_style, class_name, window_name, style, x, y, width, height, parent, menu, instance, param);
    if (recording != nullptr)
        recording->NoteCreated(index, window);
    return window;
}

BOOL DestroyWindow(HWND window)
{
    Note(__func__, {Name(window)});
    return IsRefused(__func__) ? FALSE : Layer<&DestroyWindow>("_Z13DestroyWindowP6HWND__")(window);
}

BOOL ShowWindow(HWND window, int command)
{
    Note(__func__, {Name(window), std::to_string(command)});
    return IsRefused(__func__) ? FALSE : Layer<&ShowWindow>("_Z10ShowWindowP6HWND__i")(window, command);
}

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (State().recording != nullptr)
        State().recording->NoteDefaultedMessage(message);
    return Layer<&DefWindowProcW>("_Z14DefWindowProcWP6HWND__jml")(window, message, wparam, lparam);
}

HWND SetFocus(HWND window)
{
    Note(__func__, {Name(window)});
    return IsRefused(__func__) ? nullptr : Layer<&SetFocus>("_Z8SetFocusP6HWND__")(window);
}

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback)
{
    Note(__func__,
         {Name(window), std::to_string(id), std::to_string(period_ms), callback != nullptr ? "ptr" : "null"});
    if (IsRefused(__func__))
        return 0;
    return Layer<&SetTimer>("_Z8SetTimerP6HWND__mjPFvS0_jmjE")(window, id, period_ms, callback);
}

HDC GetDC(HWND window)
{
    Note(__func__, {Name(window)});
    if (IsRefused(__func__))
        return nullptr;
    const HDC dc = Layer<&GetDC>("_Z5GetDCP6HWND__")(window);
    if (State().recording != nullptr)
        State().recording->NoteDeviceContext(window, dc);
    return dc;
}

int ReleaseDC(HWND window, HDC dc)
{
    Note(__func__, {Name(window), Name(dc)});
    return IsRefused(__func__) ? 0 : Layer<&ReleaseDC>("_Z9ReleaseDCP6HWND__P5HDC__")(window, dc);
}

int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* descriptor)
{
    Note(__func__, {Name(dc)});
    if (State().recording != nullptr)
        State().recording->NoteDescriptor(descriptor);
    if (IsRefused(__func__))
        return 0;
    return Layer<&ChoosePixelFormat>("_Z17ChoosePixelFormatP5HDC__PK21PIXELFORMATDESCRIPTOR")(dc, descriptor);
}

BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR* descriptor)
{
    Note(__func__, {Name(dc), std::to_string(format)});
    if (State().recording != nullptr)
        State().recording->NoteDescriptor(descriptor);
    if (IsRefused(__func__))
        return FALSE;
    return Layer<&SetPixelFormat>("_Z14SetPixelFormatP5HDC__iPK21PIXELFORMATDESCRIPTOR")(dc, format,
                                                                                         descriptor);
}

BOOL SwapBuffers(HDC dc)
{
    Note(__func__, {Name(dc)});
    return IsRefused(__func__) ? FALSE : Layer<&SwapBuffers>("_Z11SwapBuffersP5HDC__")(dc);
}

HGLRC wglCreateContext(HDC dc)
{
    Note(__func__, {Name(dc)});
    if (IsRefused(__func__))
        return nullptr;
    const HGLRC context = Layer<&wglCreateContext>("_Z16wglCreateContextP5HDC__")(dc);
    if (State().recording != nullptr)
        State().recording->NoteContext(context);
    return context;
}

BOOL wglDeleteContext(HGLRC context)
{
    Note(__func__, {Name(context)});
    return IsRefused(__func__) ? FALSE : Layer<&wglDeleteContext>("_Z16wglDeleteContextP7HGLRC__")(context);
}

BOOL wglMakeCurrent(HDC dc, HGLRC context)
{
    Note(__func__, {Name(dc), Name(context)});
    return IsRefused(__func__) ? FALSE
                               : Layer<&wglMakeCurrent>("_Z14wglMakeCurrentP5HDC__P7HGLRC__")(dc, context);
}

HDC wglGetCurrentDC()
{
    Note(__func__, {});
    return IsRefused(__func__) ? nullptr : Layer<&wglGetCurrentDC>("_Z15wglGetCurrentDCv")();
}

PROC wglGetProcAddress(LPCSTR name)
{
    Note(__func__, {name});
    for (const EntryPointAnswer* answer : State().answers | std::views::reverse)
        if (answer->EntryPoint() == name)
            return answer->Result();
    return Layer<&wglGetProcAddress>("_Z17wglGetProcAddressPKc")(name);
}
