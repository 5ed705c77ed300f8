// No importer is built for Windows, so that no reader runs there.
#include "viewer/import/process/reader_client.h"

#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

namespace viewer
{

std::size_t DefaultReaderMemory()
{
    return 0;
}

std::string ReaderBesideThisCode()
{
    return {};
}

Model ImportModel(const std::string& path, const ImportOptions& /*options*/,
                  const ProgressFunction& /*progress*/, const ReaderSettings& /*reader*/)
{
    const std::string extension = LowerCaseExtension(path);
    throw FileError(path, (extension.empty() ? "files without an extension" : extension + " files") +
                              " cannot be read on Windows, where no importer is built");
}

} // namespace viewer
