// The fixture of the dynamic linker's tests: a loader without modules, and files for it.
#pragma once

#include "platform/host/rx/module_loader.h"
#include "tests/support/process_files.h"
#include "tests/support/puppeteer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace karv_test
{

inline constexpr std::string_view kPuppet = "test_module_puppet";

/// The file name of a library or module of this build.
inline std::string NameOf(std::string_view module)
{
    return KARV_MODULE_PREFIX + std::string(module) + KARV_MODULE_SUFFIX;
}

/// Its path with the system's separators.
inline std::string FileOf(std::string_view module)
{
    const std::filesystem::path file = std::filesystem::path(KARV_TEST_MODULES) / NameOf(module);
    return std::filesystem::absolute(file).lexically_normal().string();
}

inline std::string Content(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void Write(const std::string& file, std::string_view content)
{
    std::ofstream(file, std::ios::binary) << content;
}

/// A loader without modules, and a test module that follows a script.
class DynamicLinker : public testing::Test
{
  protected:
    /// Clears the script: the loader's destructor sends messages after the test has ended.
    void TearDown() override { puppeteer_.script = nullptr; }

    /// The error of loading a file. Checks that the loader is unchanged.
    std::string ErrorOf(const std::string& file)
    {
        const std::size_t before = loader_.Modules().size();
        std::string error = "no error";
        try {
            loader_.Load(file);
        } catch (const std::runtime_error& thrown) {
            error = thrown.what();
        }
        EXPECT_THAT(loader_.Modules(), testing::SizeIs(before));
        EXPECT_EQ(std::ranges::count(error, '\n'), 0) << error;
        return error;
    }
    /// The same for a test module. Checks that it is not mapped afterwards.
    std::string ErrorOfModule(std::string_view module)
    {
        const std::string file = FileOf(module);
        std::string error = ErrorOf(file);
        EXPECT_FALSE(IsMapped(NameOf(module)));
        EXPECT_THAT(error, testing::StartsWith(file + ": "));
        return error.substr(std::min(error.size(), file.size() + 2));
    }
    std::string UnloadError(void* application)
    {
        try {
            loader_.Unload(application);
        } catch (const std::runtime_error& thrown) {
            return thrown.what();
        }
        return "no error";
    }
    /// Loads a module that makes both registrations.
    void* LoadGoodPuppet(std::string_view module = kPuppet)
    {
        puppeteer_.script = [this](host::Message message, void* application) {
            if (message == host::Message::Initialise) {
                loader_.allowUnload(application);
                loader_.allowManyDocuments(application);
            }
            return host::Answer::Ok;
        };
        return loader_.Load(FileOf(module));
    }

    Puppeteer puppeteer_;
    host::ModuleLoader loader_;
};

} // namespace karv_test
