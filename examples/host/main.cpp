// The smallest host that is of use: it loads a reader plug-in, gives it the options behind the log, and has
// it print its report: my-host run.log [--internal]

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "zeb/profiling/ReaderExports.h"

// A reader asks for each option that it knows. This host knows flags; values would go into `values`.
struct Flags final : zeb::commandline2::ParsedArgs {
    std::vector<std::string> words;

    zeb::commandline2::ArgLookupResult lookup(const std::string& name) override {
        return {.values = {}, .found = std::find(words.begin(), words.end(), name) != words.end()};
    }
};

int main(int argc, char** argv) try {
    void* const plugin = dlopen(READER_PLUGIN, RTLD_NOW);
    if (argc < 2 || plugin == nullptr) {
        std::cerr << (argc < 2 ? "usage: my-host LOG [FLAG...]" : dlerror()) << '\n';
        return 2;
    }
    const auto create = reinterpret_cast<decltype(&createReader)>(dlsym(plugin, "createReader"));
    const auto destroy = reinterpret_cast<decltype(&deleteReader)>(dlsym(plugin, "deleteReader"));

    Flags flags;
    flags.words.assign(argv + 2, argv + argc);
    const std::unique_ptr<zeb::profiling::IZebPluginLogReader, decltype(destroy)> reader(
        create(argv[1], zeb::profiling::VisibilityLevel{127}), destroy);
    return reader->parseBackendArgs(flags) && reader->loadLog(false) && reader->generateReports("") ? 0 : 1;
} catch (const std::exception& error) {  // a value in the log that is none, or no memory
    std::cerr << "my-host: " << error.what() << '\n';
    return 1;
}
