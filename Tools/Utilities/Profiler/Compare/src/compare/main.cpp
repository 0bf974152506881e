#include "command/RunCommand.h"
#include "compare/Compare.h"
#include "compare/CompareOptions.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::compare::programName,
                                    [&] { return zeb::compare::runCompare(argc, argv); });
}
