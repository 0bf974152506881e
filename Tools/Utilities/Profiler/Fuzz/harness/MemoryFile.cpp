#include "harness/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "support/TestFiles.h"

namespace zeb::fuzz {

namespace {

void demand(bool isGood, const char* call) {
    if (!isGood) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

}  // namespace

MemoryFile::MemoryFile()
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(descriptor_)) {
    demand(descriptor_ >= 0, "memfd_create");
}

MemoryFile::~MemoryFile() {
    close(descriptor_);
}

void MemoryFile::assign(std::span<const std::uint8_t> bytes) {
    off_t at = 0;
    while (!bytes.empty()) {
        const ssize_t written = pwrite(descriptor_, bytes.data(), bytes.size(), at);
        demand(written > 0, "pwrite");
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        at += written;
    }
    demand(ftruncate(descriptor_, at) == 0, "ftruncate");
}

std::string MemoryFile::content() const {
    return test::fileText(path_);
}

}  // namespace zeb::fuzz
