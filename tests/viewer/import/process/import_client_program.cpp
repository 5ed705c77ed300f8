// Prints what ImportedTitle says about a file, after a change of the working folder if one is given.
//
//   karv_import_client MODEL [FOLDER]
#include "tests/viewer/import/process/import_client.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc < 2)
        return EXIT_FAILURE;
    if (argc > 2)
        std::filesystem::current_path(argv[2]);
    std::cout << ImportedTitle(argv[1]) << '\n';
    return EXIT_SUCCESS;
}
