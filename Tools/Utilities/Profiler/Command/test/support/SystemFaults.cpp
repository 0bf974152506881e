#include "support/SystemFaults.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

using namespace zeb::command::test;

int duplicate = -1;

}  // namespace

extern "C" int dup(int descriptor) {
    duplicate = static_cast<int>(::syscall(SYS_dup, descriptor));
    return duplicate;
}

extern "C" int close(int descriptor) {
    const bool isDuplicate = descriptor == duplicate;
    if (isDuplicate) {
        duplicate = -1;
        if (const auto call = std::exchange(beforeClose, {})) {
            call();
        }
    }
    const int result = static_cast<int>(::syscall(SYS_close, descriptor));
    if (isDuplicate && std::exchange(nextCloseFails, false)) {
        errno = EDQUOT;
        return -1;
    }
    return result;
}

extern "C" ssize_t pread(int descriptor, void* bytes, std::size_t size, off_t offset) {
    ++reads;
    if (badByte && *badByte >= offset) {
        size = std::min(size, static_cast<std::size_t>(*badByte - offset));
        if (size == 0) {
            errno = EIO;
            return -1;
        }
    }
    return ::syscall(SYS_pread64, descriptor, bytes, size, offset);
}
