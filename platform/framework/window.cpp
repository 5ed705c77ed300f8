#include "platform/framework/window.h"

#include "platform/framework/window_classes.h"

#include <map>
#include <memory>
#include <utility>

namespace
{

/// The framework's objects of windows.
struct Registry {
    std::map<HWND, CWnd*> permanent;
    std::map<HWND, std::unique_ptr<CWnd>> temporary;
};

Registry& TheRegistry()
{
    // Never destroyed: windows with static storage, including the module's, may outlive this library's static
    // objects.
    static Registry* const registry = std::make_unique<Registry>().release();
    return *registry;
}

/// A message that an object is handling, as one link in the chain of nested messages.
class Dispatch
{
  public:
    Dispatch(CWnd* target, UINT message, WPARAM wparam, LPARAM lparam) noexcept
        : target_(target), message_(message), wparam_(wparam), lparam_(lparam), outer_(innermost_)
    {
        innermost_ = this;
    }
    Dispatch(const Dispatch&) = delete;
    Dispatch& operator=(const Dispatch&) = delete;
    ~Dispatch() { innermost_ = outer_; }

    /// The object; null after its deletion.
    [[nodiscard]] CWnd* Target() const noexcept { return target_; }
    [[nodiscard]] UINT Message() const noexcept { return message_; }
    [[nodiscard]] WPARAM Wparam() const noexcept { return wparam_; }
    [[nodiscard]] LPARAM Lparam() const noexcept { return lparam_; }

    /// The innermost message that this object is handling; null if there is none.
    [[nodiscard]] static const Dispatch* Find(const CWnd* target) noexcept
    {
        const Dispatch* dispatch = innermost_;
        while (dispatch != nullptr && dispatch->target_ != target)
            dispatch = dispatch->outer_;
        return dispatch;
    }

    /// Removes an object that is being deleted from every message that it is handling.
    static void Forget(const CWnd* target) noexcept
    {
        for (Dispatch* dispatch = innermost_; dispatch != nullptr; dispatch = dispatch->outer_)
            if (dispatch->target_ == target)
                dispatch->target_ = nullptr;
    }

  private:
    static thread_local Dispatch* innermost_;

    CWnd* target_;
    UINT message_;
    WPARAM wparam_;
    LPARAM lparam_;
    Dispatch* outer_;
};

thread_local Dispatch* Dispatch::innermost_ = nullptr;

/// Separates the window from its object, if it has one.
void Detach(HWND window) noexcept
{
    Registry& registry = TheRegistry();
    const auto found = registry.permanent.find(window);
    if (found == registry.permanent.end())
        return;
    found->second->m_hWnd = nullptr;
    registry.permanent.erase(found);
}

/// Separates the window from its object at the end of a scope, also on an exception.
class DetachAtEnd
{
  public:
    explicit DetachAtEnd(HWND window) noexcept : window_(window) {}
    DetachAtEnd(const DetachAtEnd&) = delete;
    DetachAtEnd& operator=(const DetachAtEnd&) = delete;
    ~DetachAtEnd()
    {
        if (window_ != nullptr)
            Detach(window_);
    }

  private:
    HWND window_;
};

/// An object whose window is being created. It waits only for the first message of the creation, which brings
/// the window's handle: handlers of later messages create windows that have no object.
class Creation
{
  public:
    explicit Creation(CWnd* object) noexcept : object_(object), outer_(waiting_) { waiting_ = this; }
    Creation(const Creation&) = delete;
    Creation& operator=(const Creation&) = delete;
    ~Creation()
    {
        if (waiting_ == this)
            waiting_ = outer_;
    }

    /// The window of the object; null before its first message.
    [[nodiscard]] HWND Window() const noexcept { return window_; }

    /// Assigns the window, which has just received its first message, to the waiting object. Returns that
    /// object, null if none is waiting.
    static CWnd* TakeWindow(HWND window)
    {
        Creation* const creation = waiting_;
        if (creation == nullptr)
            return nullptr;
        TheRegistry().permanent.emplace(window, creation->object_);
        waiting_ = creation->outer_;
        creation->window_ = window;
        creation->object_->m_hWnd = window;
        return creation->object_;
    }

  private:
    static thread_local Creation* waiting_;

    CWnd* object_;
    HWND window_ = nullptr;
    Creation* outer_;
};

thread_local Creation* Creation::waiting_ = nullptr;

/// Undoes a creation that an exception ended. The object may already be deleted. A window that was destroyed
/// without messages is separated from its object.
void AbandonCreation(HWND window)
{
    if (window == nullptr)
        return;
    ::DestroyWindow(window);
    Detach(window);
}

const AFX_MSGMAP kEmptyMap{nullptr, {}};

} // namespace

/// The procedure of every framework window. A class, so that it can be a friend on every system: a function
/// with an export mark cannot be one everywhere.
struct WindowProcedure {
    static LRESULT Handle(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
};

LRESULT WindowProcedure::Handle(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    CWnd* object = CWnd::FromHandlePermanent(window);
    if (object == nullptr)
        object = Creation::TakeWindow(window);
    if (object == nullptr)
        return ::DefWindowProcW(window, message, wparam, lparam);

    const Dispatch dispatch(object, message, wparam, lparam);
    LRESULT result = 0;
    {
        const DetachAtEnd detach(message == WM_NCDESTROY ? window : nullptr);
        result = object->WindowProc(message, wparam, lparam);
    }
    // The handler may have deleted the object: only the dispatch knows.
    if (message == WM_NCDESTROY && dispatch.Target() != nullptr)
        dispatch.Target()->PostNcDestroy();
    return result;
}

LRESULT CALLBACK AfxWndProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    FollowWindow(window, message);
    return WindowProcedure::Handle(window, message, wparam, lparam);
}

CWnd::~CWnd()
{
    Dispatch::Forget(this);
    const HWND window = m_hWnd;
    if (window == nullptr)
        return;
    // Separated first: an object under destruction gets no message.
    Detach(window);
    m_hWnd = nullptr;
    ::DestroyWindow(window);
}

CWnd* CWnd::FromHandle(HWND window)
{
    if (window == nullptr)
        return nullptr;
    if (CWnd* const object = FromHandlePermanent(window))
        return object;
    std::unique_ptr<CWnd>& object = TheRegistry().temporary[window];
    if (object == nullptr) {
        object = std::make_unique<CWnd>();
        object->m_hWnd = window;
    }
    return object.get();
}

CWnd* CWnd::FromHandlePermanent(HWND window)
{
    const auto& permanent = TheRegistry().permanent;
    const auto found = permanent.find(window);
    return found != permanent.end() ? found->second : nullptr;
}

void CWnd::DeleteTempMap()
{
    auto& temporary = TheRegistry().temporary;
    for (auto& [window, object] : temporary)
        object->m_hWnd = nullptr;
    temporary.clear();
}

BOOL CWnd::CreateEx(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, const RECT& rect,
                    CWnd* parent, UINT id, LPVOID param)
{
    const CRect place(rect);
    return CreateEx(ex_style, class_name, window_name, style, rect.left, rect.top, place.Width(),
                    place.Height(), parent != nullptr ? parent->m_hWnd : nullptr,
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), param);
}

BOOL CWnd::CreateEx(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x, int y,
                    int width, int height, HWND parent, HMENU id, LPVOID param)
{
    if (m_hWnd != nullptr)
        return FALSE;
    const Creation creation(this);
    // From here on a handler may have deleted this object, so no member is accessed.
    try {
        const HWND window = ::CreateWindowExW(ex_style, class_name, window_name, style, x, y, width, height,
                                              parent, id, ::GetModuleHandleW(nullptr), param);
        if (window != nullptr && creation.Window() != window) {
            // The class has another window procedure, so the object never got its window.
            ::DestroyWindow(window);
            return FALSE;
        }
        return window != nullptr ? TRUE : FALSE;
    } catch (...) {
        AbandonCreation(creation.Window());
        throw;
    }
}

BOOL CWnd::DestroyWindow()
{
    return m_hWnd != nullptr ? ::DestroyWindow(m_hWnd) : FALSE;
}

BOOL CWnd::MoveWindow(const RECT& rect, BOOL repaint)
{
    const CRect place(rect);
    return ::MoveWindow(m_hWnd, rect.left, rect.top, place.Width(), place.Height(), repaint);
}

CWnd* CWnd::SetFocus()
{
    return m_hWnd != nullptr ? FromHandle(::SetFocus(m_hWnd)) : nullptr;
}

BOOL CWnd::WalkPreTranslateTree(HWND stop, MSG* message)
{
    for (HWND window = message->hwnd; window != nullptr; window = ::GetParent(window)) {
        CWnd* const object = FromHandlePermanent(window);
        if (object != nullptr && object->PreTranslateMessage(message) != FALSE)
            return TRUE;
        if (window == stop)
            break;
    }
    return FALSE;
}

BOOL CWnd::PreTranslateMessage(MSG* /*message*/)
{
    return FALSE;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wparam, LPARAM lparam)
{
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr; map = map->base) {
        for (const AFX_MSGMAP_ENTRY& entry : map->entries)
            if (entry.message == message)
                return entry.dispatch(*this, wparam, lparam);
    }
    return DefWindowProc(message, wparam, lparam);
}

const AFX_MSGMAP* CWnd::GetMessageMap() const
{
    return GetThisMessageMap();
}

const AFX_MSGMAP* CWnd::GetThisMessageMap()
{
    return &kEmptyMap;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam)
{
    return m_hWnd != nullptr ? ::DefWindowProcW(m_hWnd, message, wparam, lparam) : 0;
}

void CWnd::PostNcDestroy() {}

LRESULT CWnd::Default()
{
    const Dispatch* const dispatch = Dispatch::Find(this);
    return dispatch != nullptr ? DefWindowProc(dispatch->Message(), dispatch->Wparam(), dispatch->Lparam())
                               : 0;
}

int CWnd::OnCreate(CREATESTRUCT* /*create*/)
{
    return static_cast<int>(Default());
}

void CWnd::OnSize(UINT /*type*/, int /*cx*/, int /*cy*/)
{
    Default();
}

void CWnd::OnPaint()
{
    Default();
}

void CWnd::OnTimer(UINT_PTR /*id*/)
{
    Default();
}
