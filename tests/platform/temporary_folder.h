// A folder for one test, removed at its end.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

namespace karv_test
{

/// Makes an empty folder named after the running test; the rest of an earlier run is removed.
class TemporaryFolder
{
  public:
    TemporaryFolder()
    {
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::path(testing::TempDir()) /
                (std::string("karv_") + test.test_suite_name() + "_" + test.name());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] std::string File(const std::string& name) const { return (path_ / name).string(); }
    /// The number of entries in the folder.
    [[nodiscard]] std::ptrdiff_t Count() const
    {
        return std::distance(std::filesystem::directory_iterator(path_), {});
    }

  private:
    std::filesystem::path path_;
};

} // namespace karv_test
