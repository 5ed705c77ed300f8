#include "tests/viewer/import/process/import_client.h"

#include "viewer/import/process/reader_client.h"
#include "viewer/text/file_error.h"

#include <string>

const char* ImportedTitle(const char* path)
{
    static std::string text;
    try {
        text = viewer::ImportModel(path, {}).title;
    } catch (const viewer::FileError& error) {
        text = error.what();
    }
    return text.c_str();
}
