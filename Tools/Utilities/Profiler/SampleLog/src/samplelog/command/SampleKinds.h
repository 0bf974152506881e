#pragma once

#include <ostream>
#include <string_view>

#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "samplelog/SharedEventsLog.h"

namespace zeb::samplelog {

/// A kind of log that the command writes.
struct SampleKind {
    std::string_view name;
    std::string_view help;     ///< in lines
    bool takesNetworkOptions;  ///< if not, they are wrong usage
    void (*write)(std::ostream& out, const NetworkOptions& options);
};

/// All of them, the default first.
inline constexpr SampleKind sampleKinds[] = {
    {"network", "a run of an image classifier with its layers, times and objects", true, writeNetworkLog},
    {"methods",
     "a message of every method and every kind of value, small enough to\n"
     "check its reports by hand",
     false, [](std::ostream& out, const NetworkOptions& /*options*/) { writeMethodsLog(out); }},
    {"adapter-updater", "a log of the adapter updater", false,
     [](std::ostream& out, const NetworkOptions& /*options*/) { writeAdapterUpdaterLog(out); }},
    {"shared-events",
     "a hostile log: a few kilobytes whose event tables share their\n"
     "sub-events down to the deepest level that a reader takes, so that\n"
     "they stand for more than two billion events. It passes every check.\n"
     "Reading it takes more time and memory than a machine has: limit both.",
     false, [](std::ostream& out, const NetworkOptions& /*options*/) { writeSharedEventsLog(out); }},
};

}  // namespace zeb::samplelog
