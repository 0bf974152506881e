#include "command/StandardOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>

#include "command/Failure.h"
#include "command/FileDescriptor.h"

namespace zeb::command {

namespace {

bool isClosed(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF;
}

// A pipe that somebody has set to non-blocking: wait until it takes more.
bool waitUntilWritable(int descriptor) {
    pollfd entry{descriptor, POLLOUT, 0};
    return restarted([&entry] { return ::poll(&entry, 1, -1); }) >= 0;
}

}  // namespace

void reserveStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (isClosed(descriptor)) {
            // The lowest free number is taken. Not writable on purpose, so that lost output is noticed.
            static_cast<void>(::open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

DescriptorBuffer::DescriptorBuffer(int descriptor) : descriptor_(descriptor) {
    setp(buffer_.data(), buffer_.data() + buffer_.size());
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type character) {
    if (sync() != 0) {
        return traits_type::eof();
    }
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        sputc(traits_type::to_char_type(character));
    }
    return traits_type::not_eof(character);
}

void DescriptorBuffer::setTerminalText(bool isOn) {
    finish();
    terminalText_.reset();
    if (isOn) {
        terminalText_.emplace(console::TerminalText::Newlines::kept);
    }
}

void DescriptorBuffer::setMuted(bool isMuted) {
    finish();
    isMuted_ = isMuted;
}

void DescriptorBuffer::finish() {
    sync();
    if (terminalText_) {
        writeAll(terminalText_->rest());
    }
}

int DescriptorBuffer::sync() {
    const std::string_view text(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    writeAll(terminalText_ ? std::string_view(terminalText_->shown(text)) : text);
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return error_ == 0 ? 0 : -1;
}

void DescriptorBuffer::writeAll(std::string_view bytes) {
    size_ += bytes.size();
    while (!bytes.empty() && error_ == 0 && !isMuted_) {
        const ssize_t count = restarted([&] { return ::write(descriptor_, bytes.data(), bytes.size()); });
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EAGAIN || !waitUntilWritable(descriptor_)) {
            error_ = errno;
        }
    }
}

StandardOutput::StandardOutput() : buffer_(STDOUT_FILENO), replaced_(std::cout.rdbuf(&buffer_)) {
    buffer_.setTerminalText(::isatty(STDOUT_FILENO) == 1);
}

StandardOutput::~StandardOutput() {
    buffer_.finish();
    std::cout.rdbuf(replaced_);
}

void StandardOutput::finish() {
    std::cout.flush();
    buffer_.finish();
    const int stdioError = std::fflush(stdout) == 0 ? 0 : errno;  // a plug-in may write past `std::cout`
    const int error = buffer_.error() != 0 ? buffer_.error() : stdioError;
    if (error == EPIPE) {
        std::cout.clear();
        return;
    }
    if (error != 0 || !std::cout) {
        throw Failure(ExitCode::badOutput, "standard output",
                      error != 0 ? "it can't be written: " + errorText(error) : "it can't be written");
    }
}

bool StandardOutput::isPipeClosed() const {
    return buffer_.error() == EPIPE;
}

}  // namespace zeb::command
