#pragma once

#include <memory>
#include <string>

#include "zeb/profiling/ReaderExports.h"

namespace zeb::viewer {

/// Gives a reader back to the library that made it.
struct ReaderDeleter {
    decltype(&::deleteReader) deleteReader;

    void operator()(profiling::IZebPluginLogReader* reader) const noexcept;
};

/// Owns a reader. It has to go before the library does.
using ReaderPtr = std::unique_ptr<profiling::IZebPluginLogReader, ReaderDeleter>;

/// A loaded reader plug-in. Whatever came out of it, its exceptions included, has to be gone before it is.
class PluginLibrary {
public:
    /// @param reader "murl", "generic", the file name of a library, or its path when there is a slash in it.
    ///               All but a path is looked for beside the program, in the library directories that go with
    ///               it, then where the dynamic loader looks.
    /// @throws Failure when there is no such plug-in, or it can't be loaded
    explicit PluginLibrary(const std::string& reader);

    /// @throws Failure when the plug-in gives no reader
    [[nodiscard]] ReaderPtr createReader(const std::string& logPath, profiling::VisibilityLevel level) const;

private:
    struct Closer {
        void operator()(void* library) const noexcept;
    };

    std::string name_;
    std::unique_ptr<void, Closer> library_;
    decltype(&::createReader) createReader_ = nullptr;
    decltype(&::deleteReader) deleteReader_ = nullptr;
};

}  // namespace zeb::viewer
