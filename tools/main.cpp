#include "command_line.h"
#include "file.h"

int main(int argc, char** argv) {
    fikleipa::tool::prepareSignals();
    return fikleipa::tool::runCommandLine(argc, argv);
}
