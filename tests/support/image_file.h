// The tables of a library's file on Windows, read from the file itself and not from what a loader made of it.
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
    /// Reads the file. Throws std::runtime_error where it is no image for this machine.
    explicit ImageFile(const std::string& path);

    /// The names that it exports, as they stand there.
    [[nodiscard]] std::set<std::string> Exports() const;
    /// How many of its exports have no name.
    [[nodiscard]] std::size_t NamelessExports() const;
    /// The functions that it imports by name, of each library; libraries by their names in lower case.
    [[nodiscard]] std::map<std::string, std::set<std::string>> Imports() const;

  private:
    /// The records at an address of the loaded image, as many as its section holds from there. Throws
    /// std::runtime_error where no section does.
    template <typename Record>
    [[nodiscard]] const Record* At(std::uintptr_t address) const;
    [[nodiscard]] const char* Text(std::uintptr_t address) const { return At<char>(address); }

    std::string content_;
};

} // namespace karv_test
