#include "forms/json/RunJson.h"

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

#include "analysis/Inference.h"
#include "analysis/RunId.h"
#include "forms/json/RunFields.h"

namespace zeb::forms {

namespace {

using analysis::Run;
using analysis::Value;
using nlohmann::json;

[[noreturn]] void refuse(std::string_view key, std::string_view what) {
    throw std::runtime_error("the value of \"" + std::string(key) + "\" is no " + std::string(what));
}

class Reader {
public:
    template <typename Struct>
    void read(const json& value, std::string_view key, Struct& into) requires requires {
        fieldsOf(into, [](std::string_view, auto&&) {});
    }
    { readFields(value, key, into); }

    // What is below an event is read by recursion, so it ends where it does in a log.
    void read(const json& value, std::string_view key, analysis::Event& into) {
        if (eventDepth_ == analysis::maxEventDepth) {
            throw std::runtime_error("its events nest deeper than " +
                                     std::to_string(analysis::maxEventDepth) + " levels");
        }
        ++eventDepth_;
        readFields(value, key, into);
        --eventDepth_;
    }

    template <typename Figure>
    void read(const json& /*value*/, std::string_view /*key*/, Derived<Figure>& /*into*/) {}

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

    void read(const json& value, std::string_view key, analysis::Labels& into) {
        if (!value.is_object()) {
            refuse(key, "object");
        }
        for (const auto& [label, text] : value.items()) {
            std::string whole;
            read(text, label, whole);
            into.insert_or_assign(analysis::cutName(label), analysis::cutName(whole));
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

private:
    template <typename Struct>
    void readFields(const json& value, std::string_view key, Struct& into) {
        if (!value.is_object()) {
            refuse(key, "object");
        }
        fieldsOf(into, [this, &value](std::string_view name, auto&& member) {
            if (const auto found = value.find(name); found != value.end()) {
                this->read(*found, name, member);
            }
        });
    }

    std::uint32_t eventDepth_ = 0;
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
    for (analysis::Graph& graph : run.graphs) {
        checkColumns(graph.executions);
        addDerivedFigures(graph);
    }
    setRunId(run);
    return run;
}

}  // namespace zeb::forms
