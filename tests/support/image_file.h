// The tables of a Windows library's file, read from the file itself and not as a loader maps it.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace karv_test
{

class ImageFile
{
  public:
    /// Reads the file. Throws std::runtime_error if it is not an image for this machine.
    explicit ImageFile(const std::string& path);

    /// The names of its exports, as written in the file.
    [[nodiscard]] std::set<std::string> Exports() const;
    /// The number of exports without a name.
    [[nodiscard]] std::size_t NamelessExports() const;
    /// The functions that it imports by name from each library; library names are in lower case.
    [[nodiscard]] std::map<std::string, std::set<std::string>> Imports() const;

  private:
    /// The records at an address of the loaded image, up to the end of their section. Throws
    /// std::runtime_error if no section contains the address.
    template <typename Record>
    [[nodiscard]] const Record* At(std::uintptr_t address) const;
    [[nodiscard]] const char* Text(std::uintptr_t address) const { return At<char>(address); }

    std::string content_;
};

} // namespace karv_test
