#pragma once

#include <concepts>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "forms/json/JsonWriter.h"
#include "forms/json/RunFields.h"

namespace zeb::forms {

/// Writes what `fieldsOf` knows, and lists and options of it, as JSON.
class FieldsWriter {
public:
    /// @param maxExecutions of a graph that has more of them the columns are empty
    explicit FieldsWriter(JsonWriter& json,
                          std::size_t maxExecutions = std::numeric_limits<std::size_t>::max())
        : json_(json), mostExecutions_(maxExecutions) {}

    /// Writes an object.
    template <typename Struct>
    void put(const Struct& value) requires requires {
        fieldsOf(value, [](std::string_view, const auto&) {});
    }
    {
        json_.beginObject();
        putMembers(value);
        json_.endObject();
    }

    /// Writes the members of an object that has been begun.
    template <typename Struct>
    void putMembers(const Struct& value) {
        fieldsOf(value, [this](std::string_view key, const auto& member) {
            json_.key(key);
            this->put(member);
        });
    }

    void put(const analysis::Executions& executions) {
        static const analysis::Executions none;
        json_.beginObject();
        putMembers(executions.count() > mostExecutions_ ? none : executions);
        json_.endObject();
    }

    void put(const analysis::Labels& labels) {
        json_.beginObject();
        for (const auto& [key, value] : labels) {
            json_.member(key, value);
        }
        json_.endObject();
    }

    template <typename Element>
    void put(const std::vector<Element>& list) {
        json_.beginList();
        for (const Element& element : list) {
            put(element);
        }
        json_.endList();
    }

    template <typename Member>
    void put(const std::optional<Member>& member) {
        member ? put(*member) : json_.null();
    }

    template <typename Figure>
    void put(const Derived<Figure>& figure) {
        put(figure.value);
    }

    void put(const analysis::Value& value) {
        std::visit([this](const auto& held) { put(held); }, value);
    }
    void put(std::monostate /*nothing*/) { json_.null(); }
    template <std::convertible_to<std::string_view> Text>
    void put(const Text& text) {
        json_.value(std::string_view(text));
    }
    template <std::floating_point Number>
    void put(Number number) {
        json_.real(number);
    }
    template <std::integral Number>
    void put(Number number) {
        json_.value(number);
    }
    template <typename Enum>
    requires std::is_enum_v<Enum>
    void put(Enum value) { json_.value(nameIn(value)); }

private:
    JsonWriter& json_;
    std::size_t mostExecutions_;
};

}  // namespace zeb::forms
