#include "viewer/apps/win32-dialog/model_file.h"

#include "platform/tools/utf8.h"
#include "viewer/apps/win32-dialog/obj_file.h"
#include "viewer/import/process/reader_client.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <string>
#include <system_error>

namespace win32_dialog
{

void CheckModelFile(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw viewer::FileError(Utf8FromWide(file.wstring()), "no such file");
    if (std::filesystem::is_directory(status))
        throw viewer::FileError(Utf8FromWide(file.wstring()), "is a directory");
    if (!std::filesystem::is_regular_file(status))
        throw viewer::FileError(Utf8FromWide(file.wstring()), "is not a regular file");
}

viewer::Model ReadModelFile(const std::filesystem::path& file)
{
    CheckModelFile(file);
    const std::string name = Utf8FromWide(file.wstring());
    if (viewer::LowerCaseExtension(name) == ".obj")
        return ReadObjFile(file);
    return viewer::ImportModel(name, {});
}

} // namespace win32_dialog
