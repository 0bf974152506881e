#include "Compare.h"
#include "CompareOptions.h"
#include "RunCommand.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::compare::programName,
                                    [&] { return zeb::compare::runCompare(argc, argv); });
}
