#include "ProgramName.h"
#include "RunCommand.h"
#include "Viewer.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::viewer::programName,
                                    [&] { return zeb::viewer::runViewer(argc, argv); });
}
