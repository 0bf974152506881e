#include "command/RunCommand.h"
#include "viewer/ProgramName.h"
#include "viewer/Viewer.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::viewer::programName,
                                    [&] { return zeb::viewer::runViewer(argc, argv); });
}
