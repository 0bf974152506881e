#include "forms/json/RunJson.h"

#include <array>
#include <charconv>
#include <concepts>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "analysis/RunId.h"
#include "forms/json/RunFields.h"

namespace zeb::forms {

namespace {

using analysis::Run;
using analysis::Value;
using nlohmann::json;

template <typename Enum>
std::string_view nameOf(Enum value) {
    for (const auto& [named, name] : enumNames(value)) {
        if (named == value) {
            return name;
        }
    }
    return {};
}

// Writes values straight to the stream: a document in between would hold a run twice.
class Writer {
public:
    Writer(std::ostream& out, BigNumbers bigNumbers, std::size_t mostExecutions)
        : out_(out), bigNumbers_(bigNumbers), mostExecutions_(mostExecutions) {}

    void put(const Run& run) {
        out_ << "{\"schema\":\"" << runSchema << '"';
        fieldsOf(run, [this](std::string_view key, const auto& member) { putField(',', key, member); });
        out_ << '}';
    }

private:
    template <typename Member>
    void putField(char before, std::string_view key, const Member& member) {
        out_ << before << '"' << key << "\":";
        put(member);
    }

    void put(const analysis::Executions& executions) {
        static const analysis::Executions none;
        putFields(executions.count() > mostExecutions_ ? none : executions);
    }

    template <typename Struct>
    void put(const Struct& value) requires requires {
        fieldsOf(value, [](std::string_view, const auto&) {});
    }
    { putFields(value); }

    template <typename Struct>
    void putFields(const Struct& value) {
        char before = '{';
        fieldsOf(value, [this, &before](std::string_view key, const auto& member) {
            this->putField(std::exchange(before, ','), key, member);
        });
        out_ << '}';
    }

    template <typename Element>
    void put(const std::vector<Element>& list) {
        out_ << '[';
        bool isFirst = true;
        for (const Element& element : list) {
            if (!std::exchange(isFirst, false)) {
                out_ << ',';
            }
            put(element);
        }
        out_ << ']';
    }

    template <typename Member>
    void put(const std::optional<Member>& member) {
        member ? put(*member) : put(std::monostate());
    }

    void put(const Value& value) {
        std::visit([this](const auto& held) { put(held); }, value);
    }
    void put(std::monostate /*nothing*/) { out_ << "null"; }
    void put(bool value) { out_ << (value ? "true" : "false"); }
    void put(const analysis::SharedText& text) { put(std::string(text)); }
    void put(const std::string& text) {
        out_ << json(text).dump(-1, ' ', false, json::error_handler_t::replace);
    }
    void put(double value) { out_ << json(value).dump(); }

    template <typename Enum>
    requires std::is_enum_v<Enum>
    void put(Enum value) { out_ << '"' << nameOf(value) << '"'; }

    template <std::integral Number>
    void put(Number value) {
        std::array<char, 20> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
        const std::string_view digits(text.data(), static_cast<std::size_t>(end - text.data()));
        if (bigNumbers_ == BigNumbers::asText && isBeyondDoubles(value)) {
            out_ << '"' << digits << '"';
        } else {
            out_ << digits;
        }
    }

    template <std::integral Number>
    static bool isBeyondDoubles(Number value) {
        constexpr auto limit = std::int64_t{1} << 53U;
        return std::cmp_greater(value, limit) || std::cmp_less(value, -limit);
    }

    std::ostream& out_;
    BigNumbers bigNumbers_;
    std::size_t mostExecutions_;
};

[[noreturn]] void refuse(std::string_view key, std::string_view what) {
    throw std::runtime_error("the value of \"" + std::string(key) + "\" is no " + std::string(what));
}

class Reader {
public:
    template <typename Struct>
    void read(const json& value, std::string_view key, Struct& into) requires requires {
        fieldsOf(into, [](std::string_view, auto&) {});
    }
    {
        if (!value.is_object()) {
            refuse(key, "object");
        }
        fieldsOf(into, [this, &value](std::string_view name, auto& member) {
            if (const auto found = value.find(name); found != value.end()) {
                this->read(*found, name, member);
            }
        });
    }

    template <typename Element>
    void read(const json& value, std::string_view key, std::vector<Element>& into) {
        if (!value.is_array()) {
            refuse(key, "list");
        }
        into.clear();
        into.reserve(value.size());
        for (const json& element : value) {
            into.emplace_back();
            read(element, key, into.back());
        }
    }

    template <typename Member>
    void read(const json& value, std::string_view key, std::optional<Member>& into) {
        if (value.is_null()) {
            into.reset();
        } else {
            read(value, key, into.emplace());
        }
    }

    void read(const json& value, std::string_view key, std::string& into) {
        if (!value.is_string()) {
            refuse(key, "text");
        }
        into = value.get<std::string>();
    }

    void read(const json& value, std::string_view key, analysis::SharedText& into) {
        std::string text;
        read(value, key, text);
        into = std::move(text);
    }

    void read(const json& value, std::string_view key, bool& into) {
        if (!value.is_boolean()) {
            refuse(key, "truth value");
        }
        into = value.get<bool>();
    }

    void read(const json& value, std::string_view key, double& into) {
        if (!value.is_number() && !value.is_null()) {
            refuse(key, "number");
        }
        into = value.is_null() ? std::numeric_limits<double>::quiet_NaN() : value.get<double>();
    }

    template <std::unsigned_integral Number>
    void read(const json& value, std::string_view key, Number& into) {
        if (!value.is_number_unsigned() || value.get<std::uint64_t>() > std::numeric_limits<Number>::max()) {
            refuse(key, "whole number that fits");
        }
        into = static_cast<Number>(value.get<std::uint64_t>());
    }

    template <typename Enum>
    requires std::is_enum_v<Enum>
    void read(const json& value, std::string_view key, Enum& into) {
        for (const auto& [named, name] : enumNames(into)) {
            if (value == name) {
                into = named;
                return;
            }
        }
        refuse(key, "name that is known");
    }

    void read(const json& value, std::string_view key, Value& into) {
        if (value.is_null()) {
            into = std::monostate();
        } else if (value.is_string()) {
            into = value.get<std::string>();
        } else if (value.is_number_unsigned()) {
            into = value.get<std::uint64_t>();
        } else if (value.is_number_integer()) {
            into = value.get<std::int64_t>();
        } else if (value.is_number()) {
            into = value.get<double>();
        } else {
            refuse(key, "value of an event");
        }
    }
};

void checkColumns(const analysis::Executions& executions) {
    if (executions.startUs.size() != executions.count() ||
        executions.queueWaitUs.size() != executions.count()) {
        throw std::runtime_error("the columns of \"executions\" differ in length");
    }
}

// Objects of earlier versions have none.
void setRunId(Run& run) {
    if (run.runId.empty()) {
        run.runId = analysis::runIdOfFigures(run);
    } else if (!analysis::isRunId(run.runId)) {
        refuse("run_id", "id of a run");
    }
}

}  // namespace

void writeRunJson(std::ostream& out, const Run& run, BigNumbers bigNumbers, std::size_t mostExecutions) {
    Writer(out, bigNumbers, mostExecutions).put(run);
    out << '\n';
}

Run readRunJson(std::istream& in) {
    const json document = json::parse(in, nullptr, false);
    if (!document.is_object()) {
        throw std::runtime_error("it is no JSON object");
    }
    const auto schema = document.find("schema");
    if (schema == document.end() || *schema != runSchema) {
        throw std::runtime_error("it is no object of the schema " + std::string(runSchema));
    }
    Run run;
    Reader().read(document, "run", run);
    for (const analysis::Graph& graph : run.graphs) {
        checkColumns(graph.executions);
    }
    setRunId(run);
    return run;
}

}  // namespace zeb::forms
