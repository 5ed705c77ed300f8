// karv_platform in a program that is not linked to it: loaded with a client, unloaded, and loaded again.
#include "platform/winsys/winsys.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace
{

constexpr const wchar_t* kPlatform = L"karv_platform.dll";

template <typename Function>
Function Exported(HMODULE library, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

/// The address range of a loaded library.
struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t size = 0;

    explicit Range(HMODULE library) : begin(reinterpret_cast<std::uintptr_t>(library))
    {
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
        const auto* const headers =
            reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + static_cast<std::uintptr_t>(dos->e_lfanew));
        size = headers->OptionalHeader.SizeOfImage;
    }
};

/// The library of the client, loaded during its life.
class Client
{
  public:
    Client() : library_(::LoadLibraryA(KARV_WINDOW_CLIENT)) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { ::FreeLibrary(library_); }

    [[nodiscard]] Range Place() const { return Range(library_); }
    [[nodiscard]] LRESULT AskWindow(WPARAM parameter) const
    {
        return Exported<LRESULT (*)(WPARAM)>(library_, "AskWindow")(parameter);
    }
    [[nodiscard]] HWND LeaveWindow() const { return Exported<HWND (*)()>(library_, "LeaveWindow")(); }

  private:
    HMODULE library_;
};

/// Keeps libraries away from a range of addresses: any access there is a fault.
class Occupied
{
  public:
    explicit Occupied(const Range& range)
        : begin_(::VirtualAlloc(reinterpret_cast<void*>(range.begin), range.size, MEM_RESERVE, PAGE_NOACCESS))
    {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(begin_), range.begin);
    }
    Occupied(const Occupied&) = delete;
    Occupied& operator=(const Occupied&) = delete;
    ~Occupied() { ::VirtualFree(begin_, 0, MEM_RELEASE); }

  private:
    void* begin_;
};

std::wstring ClassOf(HWND window)
{
    std::wstring name(256, L'\0');
    name.resize(static_cast<std::size_t>(::GetClassNameW(window, name.data(), 256)));
    return name;
}

bool IsRegistered(const std::wstring& name)
{
    WNDCLASSW registered{};
    return ::GetClassInfoW(::GetModuleHandleW(nullptr), name.c_str(), &registered) != FALSE;
}

/// The libraries were loaded once and are unloaded. One window is left, and their addresses are occupied.
class ReloadedPlatform : public testing::Test
{
  protected:
    ReloadedPlatform()
    {
        const Client first;
        ranges_ = {first.Place(), Range(::GetModuleHandleW(kPlatform))};
        left_ = first.LeaveWindow();
    }
    ~ReloadedPlatform() override
    {
        EXPECT_TRUE(::DestroyWindow(left_));
        EXPECT_TRUE(::UnregisterClassW(class_.c_str(), ::GetModuleHandleW(nullptr)));
    }

    void SetUp() override
    {
        ASSERT_EQ(::GetModuleHandleW(kPlatform), nullptr) << "unloaded";
        ASSERT_TRUE(::IsWindow(left_));
        class_ = ClassOf(left_);
        occupied_client_.emplace(ranges_.front());
        occupied_platform_.emplace(ranges_.back());
    }

    /// Whether the window that was left handles messages, by the system's default procedure.
    [[nodiscard]] bool IsLeftWindowUsable() const
    {
        return ::SendMessageW(left_, WM_USER, 1, 0) == 0 && ::SetWindowTextW(left_, L"New") != FALSE &&
               ::GetWindowTextLengthW(left_) == 3;
    }

    HWND left_ = nullptr;
    std::wstring class_;

  private:
    std::vector<Range> ranges_;
    std::optional<Occupied> occupied_client_;
    std::optional<Occupied> occupied_platform_;
};

TEST_F(ReloadedPlatform, WindowThatWasLeftHandlesMessages)
{
    EXPECT_TRUE(IsLeftWindowUsable());
}

TEST_F(ReloadedPlatform, NewWindowOfTheClassThatWasLeftHandlesMessages)
{
    const HWND window = ::CreateWindowExW(0, class_.c_str(), L"Late", WS_POPUP, 0, 0, 10, 10, nullptr,
                                          nullptr, ::GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(::SendMessageW(window, WM_USER, 1, 0), 0);
    EXPECT_TRUE(::DestroyWindow(window));
}

TEST_F(ReloadedPlatform, SecondCopyMakesWindowsOfItsOwn)
{
    const Client second;
    ASSERT_NE(::GetModuleHandleW(kPlatform), nullptr);
    EXPECT_EQ(second.AskWindow(41), 42);
    EXPECT_TRUE(IsLeftWindowUsable());
}

TEST_F(ReloadedPlatform, SecondCopyLeavesAWindowToo)
{
    HWND left = nullptr;
    {
        const Client second;
        left = second.LeaveWindow();
    }
    const std::wstring name = ClassOf(left);
    EXPECT_NE(name, class_);
    EXPECT_EQ(::SendMessageW(left, WM_USER, 1, 0), 0);
    {
        const Client third;
        EXPECT_EQ(third.AskWindow(1), 2);
    }
    EXPECT_TRUE(::DestroyWindow(left));
    EXPECT_TRUE(::UnregisterClassW(name.c_str(), ::GetModuleHandleW(nullptr)));
    EXPECT_TRUE(IsLeftWindowUsable());
}

TEST(UnloadedPlatform, ClassWithoutWindowsIsUnregistered)
{
    for (WPARAM i = 0; i < 20; ++i) {
        std::wstring name;
        {
            const Client client;
            EXPECT_EQ(client.AskWindow(i), static_cast<LRESULT>(i) + 1);
            const HWND window = client.LeaveWindow();
            name = ClassOf(window);
            EXPECT_TRUE(IsRegistered(name));
            EXPECT_TRUE(::DestroyWindow(window));
        }
        EXPECT_FALSE(IsRegistered(name)) << i;
    }
}

TEST(UnloadedPlatform, SubclassedWindowHandlesMessages)
{
    static WNDPROC before = nullptr;
    const WNDPROC passing_on = [](HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        return ::CallWindowProcW(before, window, message, wparam, lparam);
    };
    HWND left = nullptr;
    {
        const Client client;
        left = client.LeaveWindow();
        before = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(left, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(passing_on)));
    }
    const std::wstring name = ClassOf(left);
    EXPECT_EQ(::SendMessageW(left, WM_USER, 1, 0), 0);
    EXPECT_TRUE(::DestroyWindow(left));
    EXPECT_TRUE(::UnregisterClassW(name.c_str(), ::GetModuleHandleW(nullptr)));
}

TEST(UnloadedPlatformDeathTest, ProcessEndsWithAWindow)
{
    const auto end = [] {
        const Client client;
        std::exit(client.LeaveWindow() != nullptr ? 17 : 1);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(17), "");
}

} // namespace
