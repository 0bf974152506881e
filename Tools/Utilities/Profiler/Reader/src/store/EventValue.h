#pragma once

#include <bit>
#include <cstdint>

namespace zeb::profiling {

/// How the payload of an `EventValue` is read. Decoding makes `int64`, `uint64`, `float32`, `float64`, `text`
/// and `unset`; the other kinds are known to the reports only.
enum class ValueKind : std::int32_t {
    int8 = 8,
    int16 = 22,
    int32 = 50,
    int64 = 100,
    uint8 = 264,
    uint16 = 278,
    uint32 = 306,
    uint64 = 356,
    int16Alternate = 550,
    float32 = 562,
    float64 = 612,
    uint8Alternate = 1288,
    text = 1544,
    unset = 2147483647,
};

/// The measured value of an event: 64 bits, read according to the kind. Narrow kinds stand in the low bytes.
struct EventValue {
    std::uint64_t payload = 0;
    ValueKind kind = ValueKind::unset;

    EventValue() = default;
    EventValue(ValueKind valueKind, std::uint64_t bits) : payload(bits), kind(valueKind) {}

    static EventValue ofInt(std::int64_t value) {
        return {ValueKind::int64, std::bit_cast<std::uint64_t>(value)};
    }
    static EventValue ofUint(std::uint64_t value) { return {ValueKind::uint64, value}; }
    static EventValue ofFloat(float value) {
        return {ValueKind::float32, std::bit_cast<std::uint32_t>(value)};
    }
    static EventValue ofDouble(double value) {
        return {ValueKind::float64, std::bit_cast<std::uint64_t>(value)};
    }
    /// @param text NUL-terminated; it has to outlive the value and all copies of it
    static EventValue ofText(const char* text) {
        return {ValueKind::text, static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(text))};
    }

    /// The payload as a number, whatever the kind. A text has none and gives 0: its payload is an address.
    [[nodiscard]] std::uint64_t asNumber() const { return kind == ValueKind::text ? 0 : payload; }
    /// The payload of a `float32` value.
    [[nodiscard]] float asFloat() const { return std::bit_cast<float>(static_cast<std::uint32_t>(payload)); }
    /// The payload of a `float64` value.
    [[nodiscard]] double asDouble() const { return std::bit_cast<double>(payload); }
    /// The payload of a `text` value, NUL-terminated.
    [[nodiscard]] const char* asText() const {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): `ofText` has put it there
        return reinterpret_cast<const char*>(static_cast<std::uintptr_t>(payload));
    }
};

}  // namespace zeb::profiling
