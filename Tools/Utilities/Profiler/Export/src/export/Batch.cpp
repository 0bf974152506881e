#include "export/Batch.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <random>
#include <system_error>

#include "command/Failure.h"

namespace zeb::exports {

namespace {

namespace fs = std::filesystem;
using command::ExitCode;
using command::Failure;
using command::FileDescriptor;

constexpr std::string_view unfinishedPrefix = ".unfinished-";
constexpr std::size_t writtenAtOnce = std::size_t{1} << 18U;

Failure cantWrite(const std::string& path, const std::string& reason) {
    return {ExitCode::badOutput, path, "it can't be written: " + reason};
}

std::string randomDigits() {
    std::array<char, 9> text{};
    std::snprintf(text.data(), text.size(), "%08x", static_cast<unsigned>(std::random_device()()));
    return text.data();
}

// "20261001T090000.000000Z"
std::string textOfNow() {
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(
                        std::chrono::system_clock::now().time_since_epoch())
                        .count();
    constexpr std::int64_t usPerSecond = 1'000'000;
    const std::time_t seconds = us / usPerSecond;
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y%m%dT%H%M%S", &utc);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s.%06dZ", date.data(), static_cast<int>(us % usPerSecond));
    return text.data();
}

FileDescriptor openFolder(const fs::path& folder) {
    return FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
}

bool lock(const FileDescriptor& folder) {
    return folder.isOpen() && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

bool isStillAt(const FileDescriptor& folder, const fs::path& path) {
    struct stat opened {};
    struct stat there {};
    return ::fstat(folder.get(), &opened) == 0 && ::stat(path.c_str(), &there) == 0 &&
           command::isSameFile(opened, there);
}

// A process holds the lock of its folder to its end, however that comes.
void takeAwayAbandoned(const fs::path& directory) {
    std::error_code error;
    for (fs::directory_iterator each(directory, error), end; !error && each != end; each.increment(error)) {
        if (each->path().filename().native().starts_with(unfinishedPrefix)) {
            const FileDescriptor folder = openFolder(each->path());
            if (lock(folder)) {
                std::error_code ignored;
                fs::remove_all(each->path(), ignored);
            }
        }
    }
}

}  // namespace

Batch::Batch(fs::path directory, std::span<const forms::Table> tables) : directory_(std::move(directory)) {
    std::error_code error;
    fs::create_directories(directory_, error);
    if (error) {
        throw cantWrite(directory_.native(), error.message());
    }
    takeAwayAbandoned(directory_);
    begin();
    tables_.resize(std::size(forms::allTables));
    for (const forms::Table table : tables) {
        OpenTable& opened = tables_[static_cast<std::size_t>(table)];
        opened.path =
            folder_ / (std::string(forms::allTables[static_cast<std::size_t>(table)].name) + ".csv");
        constexpr mode_t allThatTheUserGrants = 0666;
        opened.file = FileDescriptor(
            ::open(opened.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, allThatTheUserGrants));
        if (!opened.file.isOpen()) {
            throw cantWrite(opened.path, command::errorText(errno));
        }
        opened.waiting.reserve(writtenAtOnce);
        forms::CsvRows head([&](std::string_view bytes) { append(table, bytes); });
        forms::putHead(table, head);
        head.flush();
    }
}

Batch::~Batch() {
    if (!folder_.empty()) {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
}

// Between the making of a folder and its lock somebody may take it for an abandoned one.
void Batch::begin() {
    constexpr mode_t allThatTheUserGrants = 0777;
    while (folder_.empty()) {
        const fs::path folder = directory_ / (std::string(unfinishedPrefix) + randomDigits());
        if (::mkdir(folder.c_str(), allThatTheUserGrants) != 0) {
            if (errno == EEXIST) {
                continue;
            }
            throw cantWrite(directory_.native(), command::errorText(errno));
        }
        FileDescriptor opened = openFolder(folder);
        if (lock(opened) && isStillAt(opened, folder)) {
            folder_ = folder;
            lock_ = std::move(opened);
        }
    }
}

void Batch::append(forms::Table table, std::string_view bytes) {
    OpenTable& opened = tables_[static_cast<std::size_t>(table)];
    if (opened.waiting.size() + bytes.size() > writtenAtOnce) {
        write(opened);
    }
    opened.waiting.append(bytes);
}

void Batch::write(OpenTable& table) {
    std::string_view rest = table.waiting;
    while (!rest.empty()) {
        const ssize_t written =
            command::restarted([&] { return ::write(table.file.get(), rest.data(), rest.size()); });
        if (written < 0) {
            throw cantWrite(table.path, command::errorText(errno));
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    table.waiting.clear();
}

std::string Batch::putInPlace() {
    for (OpenTable& table : tables_) {
        if (table.file.isOpen()) {
            write(table);
            if (::fsync(table.file.get()) != 0) {
                throw cantWrite(table.path, command::errorText(errno));
            }
        }
    }
    if (::fsync(lock_.get()) != 0) {
        throw cantWrite(folder_.native(), command::errorText(errno));
    }
    const FileDescriptor directory = openFolder(directory_);
    while (true) {
        const fs::path place = directory_ / (textOfNow() + '-' + randomDigits());
        if (::renameat2(AT_FDCWD, folder_.c_str(), AT_FDCWD, place.c_str(), RENAME_NOREPLACE) == 0) {
            folder_.clear();
            static_cast<void>(directory.isOpen() && ::fsync(directory.get()) == 0);
            return place.native();
        }
        if (errno != EEXIST) {
            throw cantWrite(place.native(), command::errorText(errno));
        }
    }
}

}  // namespace zeb::exports
