// The smallest reader plug-in: its report is the number of chunks of a log and of their bytes. A log is a row
// of chunks, each behind its length as four bytes, the least significant first.

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include "zeb/profiling/ReaderExports.h"

namespace {

using zeb::profiling::EventList;

class ChunkCounter final : public zeb::profiling::IZebPluginLogReader {
public:
    explicit ChunkCounter(std::string path) : path_(std::move(path)) {}

    bool parseBackendArgs(zeb::commandline2::ParsedArgs& args) override {
        if (args.lookup("--help").found) {
            std::cerr << "[ --bytes ]   Count the bytes of the chunks too.\n";
            return false;
        }
        countsBytes_ = args.lookup("--bytes").found;
        return true;
    }

    bool loadLog(bool /*saveObjects*/) override {
        std::ifstream log(path_, std::ios::binary);
        std::array<char, 4> prefix{};
        for (; log.peek() != std::ifstream::traits_type::eof(); ++chunks_) {
            if (!log.read(prefix.data(), prefix.size())) {
                return false;
            }
            std::uint32_t length = 0;
            for (std::size_t index = prefix.size(); index-- > 0;) {
                length = length << 8U | static_cast<unsigned char>(prefix[index]);
            }
            if (log.ignore(length).gcount() != std::streamsize{length}) {
                return false;
            }
            bytes_ += length;
        }
        return log.is_open();
    }

    bool generateReports(const std::string& csvPath) override {
        std::cout << "chunks: " << chunks_ << '\n';
        if (countsBytes_) {
            std::cout << "bytes: " << bytes_ << '\n';
        }
        std::cout.flush();
        return csvPath.empty() ||
               static_cast<bool>(std::ofstream(csvPath, std::ios::app) << chunks_ << ',' << bytes_ << '\n');
    }

    // For readers that decode messages and events; hosts don't call them.
    std::string printHeader() override { return {}; }
    bool readNextMessage() override { return false; }
    void printEvent(std::ostream& /*out*/, const EventList& /*events*/, std::uint64_t /*level*/) override {}
    void writeEventCsv(std::ostream& /*out*/, const EventList& /*events*/, std::uint64_t /*timestamp*/,
                       const std::string& /*message*/) override {}

private:
    std::string path_;
    std::uint64_t chunks_ = 0;
    std::uint64_t bytes_ = 0;
    bool countsBytes_ = false;
};

}  // namespace

zeb::profiling::IZebPluginLogReader* createReader(const std::string& path,
                                                  zeb::profiling::VisibilityLevel /*level*/) {
    return new ChunkCounter(path);
}

void deleteReader(zeb::profiling::IZebPluginLogReader* reader) {
    delete reader;
}
