#include "command_line.h"
#include "output_file.h"

int main(int argc, char** argv) {
    fikleipa::tool::prepareProcess();
    return fikleipa::tool::runCommandLine(argc, argv);
}
