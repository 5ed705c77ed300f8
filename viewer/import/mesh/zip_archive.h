// Files in a ZIP archive.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace viewer
{

class ZipArchive
{
  public:
    /// Throws FileError if the file is not an archive.
    explicit ZipArchive(const std::string& path);

    /// Unpacks a file and calls `take` with its blocks, in order. The case of letters in the name is ignored.
    /// Returns false if there is no such file. Throws FileError if it is damaged, or if its size exceeds both
    /// `kMaxSmall` bytes and `kMaxRatio` times its packed size.
    bool Read(std::string name, const std::function<void(std::span<const char> block)>& take) const;

    static constexpr unsigned long long kMaxRatio = 300;
    static constexpr unsigned long long kMaxSmall = 1ULL << 20U;

  private:
    std::string path_;
    std::shared_ptr<void> archive_;
};

} // namespace viewer
