// karv_platform in a program that is not linked to it: loaded with a client, which is unloaded and loaded again.
#include "platform/winsys/winsys.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include <dlfcn.h>

namespace
{

struct Closing {
    void operator()(void* library) const { ::dlclose(library); }
};

/// The library of the client, loaded during its life.
class Client
{
  public:
    Client() : library_(::dlopen(KARV_WINDOW_CLIENT, RTLD_NOW | RTLD_LOCAL)) {}

    [[nodiscard]] LRESULT AskWindow(WPARAM parameter) const
    {
        return Exported<LRESULT (*)(WPARAM)>("AskWindow")(parameter);
    }
    [[nodiscard]] HWND LeaveWindow() const { return Exported<HWND (*)()>("LeaveWindow")(); }
    [[nodiscard]] LRESULT Ask(HWND window, WPARAM parameter) const
    {
        return Exported<LRESULT (*)(HWND, WPARAM)>("Ask")(window, parameter);
    }

  private:
    template <typename Function>
    [[nodiscard]] Function Exported(const char* name) const
    {
        return reinterpret_cast<Function>(::dlsym(library_.get(), name));
    }

    std::unique_ptr<void, Closing> library_;
};

bool IsLoaded(const char* file)
{
    const std::unique_ptr<void, Closing> library(::dlopen(file, RTLD_NOW | RTLD_NOLOAD));
    return library != nullptr;
}

TEST(ReloadedPlatform, StaysForTheWindowsThatWereLeft)
{
    ::unsetenv("DISPLAY"); // no window is shown
    HWND left = nullptr;
    {
        const Client first;
        EXPECT_EQ(first.AskWindow(1), 2);
        left = first.LeaveWindow();
        ASSERT_NE(left, nullptr);
    }
    ASSERT_FALSE(IsLoaded(KARV_WINDOW_CLIENT));
    ASSERT_TRUE(IsLoaded(KARV_PLATFORM_FILE));
    for (int i = 0; i < 20; ++i) {
        const Client next;
        EXPECT_EQ(next.Ask(left, 1), 0) << "the default handling";
        EXPECT_EQ(next.AskWindow(41), 42);
    }
}

} // namespace
