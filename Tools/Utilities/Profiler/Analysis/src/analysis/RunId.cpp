#include "analysis/RunId.h"

#include <xxhash.h>

#include <array>
#include <bit>
#include <new>

namespace zeb::analysis {

namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";

// Hashes values so that no two different lists of them have the same bytes.
class FigureHash {
public:
    void add(std::string_view text) {
        add(std::uint64_t{text.size()});
        hash_.add({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    void add(std::uint64_t number) {
        std::array<std::uint8_t, sizeof number> bytes{};
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(number);
            number >>= 8U;
        }
        hash_.add(bytes);
    }
    void add(double number) { add(std::bit_cast<std::uint64_t>(number)); }
    void add(const std::vector<std::optional<std::uint64_t>>& column) {
        add(std::uint64_t{column.size()});
        for (const auto& value : column) {
            add(std::uint64_t{value.has_value()});
            add(value.value_or(0));
        }
    }

    [[nodiscard]] std::string runId() const { return hash_.runId(); }

private:
    RunIdHash hash_;
};

}  // namespace

RunIdHash::RunIdHash() : state_(XXH3_createState()) {
    if (!state_) {
        throw std::bad_alloc();
    }
    XXH3_128bits_reset(state_.get());
}

void RunIdHash::Free::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

void RunIdHash::add(std::span<const std::uint8_t> bytes) {
    XXH3_128bits_update(state_.get(), bytes.data(), bytes.size());
}

std::string RunIdHash::runId() const {
    XXH128_canonical_t bytes;
    XXH128_canonicalFromHash(&bytes, XXH3_128bits_digest(state_.get()));
    std::string text;
    for (const unsigned byte : bytes.digest) {
        text += hexDigits[byte >> 4U];
        text += hexDigits[byte & 0xFU];
    }
    return text;
}

std::string runIdOfFigures(const Run& run) {
    FigureHash hash;
    hash.add(std::uint64_t{run.header.has_value()});
    if (run.header) {
        hash.add(run.header->timeScale);
        hash.add(run.header->epochUs);
        hash.add(run.header->steadyUs);
        hash.add(run.header->generatorName);
        hash.add(run.header->generatorVersion);
        hash.add(run.header->backendVersion);
    }
    for (const Graph& graph : run.graphs) {
        hash.add(graph.name);
        hash.add(graph.executions.startUs);
        hash.add(graph.executions.durationUs);
        hash.add(graph.executions.queueWaitUs);
    }
    return hash.runId();
}

bool isRunId(std::string_view text) {
    return text.size() == 2 * sizeof(XXH128_canonical_t) &&
           text.find_first_not_of(hexDigits) == std::string_view::npos;
}

}  // namespace zeb::analysis
