#include "viewer/PluginLibrary.h"

#include <dlfcn.h>

#include <exception>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "command/Failure.h"
#include "text/NearestName.h"
#include "viewer/NamedReaders.h"
#include "viewer/ProgramName.h"

namespace zeb::viewer {

using command::ExitCode;
using command::Failure;

namespace {

namespace fs = std::filesystem;

// Beside the program, in its ../lib, and where the installation puts libraries on this system.
constexpr std::string_view libraryDirectories[] = {".", "../lib", ZEB_LIBRARY_DIRECTORY};

std::string fileNameOf(const std::string& reader) {
    for (const auto& [name, fileName] : namedReaders) {
        if (reader == name) {
            return std::string(fileName);
        }
    }
    return reader;
}

std::vector<fs::path> searchedPlaces() {
    std::vector<fs::path> places;
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        for (const std::string_view directory : libraryDirectories) {
            const fs::path place = (program.parent_path() / directory / "").lexically_normal().parent_path();
            if (places.empty() || places.back() != place) {
                places.push_back(place);
            }
        }
    }
    return places;
}

// A library that is there is the one that is meant, also when it can't be loaded.
std::string locate(const std::string& fileName, const std::vector<fs::path>& places) {
    for (const fs::path& place : places) {
        std::error_code error;
        if (fs::exists(place / fileName, error)) {
            return place / fileName;
        }
    }
    return fileName;
}

// The loader's text for the last failure, without the file's name in front.
std::string loaderError(const std::string& name) {
    const char* const text = dlerror();
    const std::string error = text == nullptr ? "unknown error" : text;
    return error.starts_with(name + ": ") ? error.substr(name.size() + 2) : error;
}

// Whoever names a reader that there is not may have misspelt one.
std::string suggestion(const std::string& reader) {
    std::vector<std::string> names;
    for (const NamedReader& known : namedReaders) {
        names.emplace_back(known.name);
    }
    const auto meant = profiling::nearestName(reader, names);
    return meant ? "did you mean " + *meant + "? " : "";
}

std::string textOf(const std::vector<fs::path>& places) {
    std::string text = "looked in ";
    for (const fs::path& place : places) {
        text += place.string() + ", ";
    }
    text += "and where the loader looks; by name there are:";
    for (const NamedReader& reader : namedReaders) {
        text.append(" ").append(reader.name);
    }
    return text;
}

struct OpenedLibrary {
    std::string name;
    void* handle;
};

OpenedLibrary open(const std::string& reader) {
    const bool isPath = reader.find('/') != std::string::npos;
    const auto places = isPath ? std::vector<fs::path>() : searchedPlaces();
    const std::string name = isPath ? reader : locate(fileNameOf(reader), places);
    if (void* const handle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        return {name, handle};
    }
    const std::string cause = "the reader plug-in can't be loaded: " + loaderError(name);
    const bool isFound = name.find('/') != std::string::npos;
    throw Failure(ExitCode::badPlugin, name,
                  isFound ? cause : cause + " (" + suggestion(reader) + textOf(places) + ")");
}

template <typename Function>
Function findExport(void* library, const std::string& libraryName, const char* exportName) {
    void* const symbol = dlsym(library, exportName);
    if (symbol == nullptr) {
        throw Failure(ExitCode::badPlugin, libraryName,
                      "no reader plug-in: it doesn't export " + std::string(exportName));
    }
    return reinterpret_cast<Function>(symbol);
}

}  // namespace

void ReaderDeleter::operator()(profiling::IZebPluginLogReader* reader) const noexcept {
    try {
        deleteReader(reader);
    } catch (...) {
        printErrorLine("the reader failed while it was destroyed");
    }
}

void PluginLibrary::Closer::operator()(void* library) const noexcept {
    static_cast<void>(dlclose(library));
}

PluginLibrary::PluginLibrary(const std::string& reader) {
    OpenedLibrary opened = open(reader);
    library_.reset(opened.handle);
    name_ = std::move(opened.name);
    createReader_ = findExport<decltype(createReader_)>(library_.get(), name_, "createReader");
    deleteReader_ = findExport<decltype(deleteReader_)>(library_.get(), name_, "deleteReader");
}

ReaderPtr PluginLibrary::createReader(const std::string& logPath, profiling::VisibilityLevel level) const {
    ReaderPtr reader(nullptr, {deleteReader_});
    std::string cause = "the plug-in has made no reader";
    try {
        reader.reset(createReader_(logPath, level));
    } catch (const std::exception& error) {
        cause += std::string(": ") + error.what();
    } catch (...) {
        // an exception of the plug-in's own, without a text
    }
    if (!reader) {
        throw Failure(ExitCode::badPlugin, name_, cause);
    }
    return reader;
}

}  // namespace zeb::viewer
