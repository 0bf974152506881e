#include "manual/Commands.h"

#include "compare/CompareOptions.h"
#include "export/ExportOptions.h"
#include "history/HistoryOptions.h"
#include "manual/ReaderOptions.h"
#include "samplelog/command/CommandOptions.h"
#include "viewer/ViewerOptions.h"

namespace zeb::manual {

namespace {

console::CommandManual viewerManual() {
    console::CommandManual manual = viewer::viewerManual();
    const auto options = readerOptions();
    manual.options.insert(manual.options.end(), options.begin(), options.end());
    return manual;
}

}  // namespace

std::vector<console::CommandManual> commandManuals() {
    return {
        viewerManual(),           compare::compareManual(),   exports::exportManual(),
        history::historyManual(), samplelog::commandManual(),
    };
}

}  // namespace zeb::manual
