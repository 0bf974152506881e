#include "log/ChunkReader.h"

#include <filesystem>
#include <span>
#include <system_error>

#include "memory/MemoryBlock.h"

namespace zeb::profiling {

namespace {

constexpr std::size_t fileBufferSize = 1U << 16U;  // small chunks are many to a read

}  // namespace

ChunkReader::ChunkReader(const std::string& path)
    : fileBuffer_(std::make_unique_for_overwrite<char[]>(fileBufferSize)) {
    file_.rdbuf()->pubsetbuf(fileBuffer_.get(), fileBufferSize);
    file_.open(path, std::ios::binary);
    std::error_code error;
    const std::uintmax_t fileSize = std::filesystem::file_size(path, error);
    fileSize_ = error ? 0 : fileSize;
}

bool ChunkReader::nextLength() {
    file_.read(reinterpret_cast<char*>(prefix_.data()), std::streamsize{chunkPrefixSize});
    prefixSize_ = static_cast<std::size_t>(file_.gcount());
    if (!file_) {
        return false;
    }
    length_ = chunkLengthIn(prefix_.data());
    bytesRead_ = 0;
    offset_ = nextOffset_;
    index_ = nextIndex_++;
    nextOffset_ += chunkPrefixSize + length_;
    return true;
}

std::unique_ptr<const LogChunkBuffer> ChunkReader::readBody() {
    auto buffer = std::make_unique<LogChunkBuffer>(length_);
    if (nextOffset_ <= fileSize_) {
        fetchPages(std::as_writable_bytes(std::span(buffer->data(), buffer->size())));
    }
    file_.read(reinterpret_cast<char*>(buffer->data()), static_cast<std::streamsize>(length_));
    bytesRead_ = static_cast<std::uint64_t>(file_.gcount());
    return bytesRead_ == length_ ? std::move(buffer) : nullptr;
}

}  // namespace zeb::profiling
