// karv-reader: parses a model file for another program, which starts it, and writes the model to the standard
// output. It takes part in a protocol of its own and is not meant to be started by hand.
#include "viewer/import/process/reader_program.h"

int main(int argc, char** argv)
{
    return viewer::RunReader(argc, argv);
}
