#include "command/RunCommand.h"
#include "history/HistoryOptions.h"
#include "history/ShowHistory.h"

int main(int argc, char** argv) {
    return zeb::command::runCommand(zeb::history::programName,
                                    [&] { return zeb::history::runHistory(argc, argv); });
}
