// Files inside of a ZIP archive.
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

    /// Unpacks a file, in order, as blocks for `take`. Returns false if it is not there. Letters match in either
    /// case. Throws FileError if it is damaged, or unpacks to more than `kMaxRatio` times its packed size and
    /// `kMaxSmall` bytes.
    bool Read(std::string name, const std::function<void(std::span<const char> block)>& take) const;

    static constexpr unsigned long long kMaxRatio = 300;
    static constexpr unsigned long long kMaxSmall = 1ULL << 20U;

  private:
    std::string path_;
    std::shared_ptr<void> archive_;
};

} // namespace viewer
