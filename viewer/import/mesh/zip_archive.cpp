#include "viewer/import/mesh/zip_archive.h"

#include "viewer/import/damaged_file.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <cstddef>
#include <minizip/unzip.h>

namespace viewer
{

ZipArchive::ZipArchive(const std::string& path)
    : path_(path), archive_(unzOpen64(path.c_str()), [](void* archive) {
          if (archive != nullptr)
              unzClose(archive);
      })
{
    if (archive_ == nullptr)
        throw FileError(path, "damaged or truncated: not a ZIP archive");
}

bool ZipArchive::Read(std::string name, const std::function<void(std::span<const char> block)>& take) const
{
    name.erase(0, name.find_first_not_of('/'));
    constexpr int kEitherCase = 2;
    unz_file_info64 info{};
    if (unzLocateFile(archive_.get(), name.c_str(), kEitherCase) != UNZ_OK)
        return false;
    if (unzGetCurrentFileInfo64(archive_.get(), &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
        unzOpenCurrentFile(archive_.get()) != UNZ_OK)
        ThrowDamaged(path_, "'" + name + "' cannot be unpacked");
    const std::shared_ptr<void> file(archive_.get(), [](void* archive) { unzCloseCurrentFile(archive); });
    const unsigned long long max_size =
        std::max<unsigned long long>(kMaxSmall, info.compressed_size * kMaxRatio);
    constexpr std::size_t kBlock = 1UL << 16U;
    std::vector<char> block(kBlock);
    for (unsigned long long size = 0;;) {
        const int count = unzReadCurrentFile(archive_.get(), block.data(), static_cast<unsigned int>(kBlock));
        if (count < 0)
            ThrowDamaged(path_, "'" + name + "' cannot be unpacked");
        if (count == 0)
            return true;
        size += static_cast<unsigned long long>(count);
        if (size > max_size)
            throw FileError(path_, "'" + name + "' unpacks to more than its size allows");
        take(std::span(block).first(static_cast<std::size_t>(count)));
    }
}

} // namespace viewer
