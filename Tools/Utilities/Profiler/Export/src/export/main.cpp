#include "command/RunCommand.h"
#include "export/Export.h"
#include "export/ExportOptions.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::exports::programName,
                                    [&] { return zeb::exports::runExport(argc, argv); });
}
