#include "viewer/ObjectDirectory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "command/Failure.h"

namespace zeb::viewer {

using command::errorText;
using command::ExitCode;
using command::Failure;
using command::FileDescriptor;

namespace {

constexpr int directoryFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

Failure directoryFailure(const std::string& path, int error) {
    return {ExitCode::badOutput, path, "objects can't be saved there: " + errorText(error)};
}

FileDescriptor openDirectory(const std::string& path) {
    FileDescriptor directory(::open(path.c_str(), directoryFlags));
    if (!directory.isOpen()) {
        throw directoryFailure(path, errno);
    }
    return directory;
}

void enter(const FileDescriptor& directory, const std::string& path) {
    if (::fchdir(directory.get()) != 0) {
        throw directoryFailure(path, errno);
    }
}

}  // namespace

ObjectDirectory::ObjectDirectory(const std::string& path) : directory_(openDirectory(path)) {
    if (::faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        throw directoryFailure(path, errno);
    }
    std::error_code error;
    path_ = std::filesystem::canonical(path, error).string();
    if (error) {
        throw directoryFailure(path, error.value());
    }
}

DirectoryVisit::DirectoryVisit(const ObjectDirectory& directory) : before_(openDirectory(".")) {
    enter(directory.directory_, directory.path());
}

DirectoryVisit::~DirectoryVisit() {
    if (before_.isOpen()) {
        static_cast<void>(::fchdir(before_.get()));
    }
}

void DirectoryVisit::leave() {
    const FileDescriptor before = std::exchange(before_, FileDescriptor(-1));
    enter(before, "the working directory");
}

}  // namespace zeb::viewer
