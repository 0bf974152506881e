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

/// Who is to read it.
enum class Audience { program, page };

/// @return whether pictures of a page show that of an ORU layer, and not its tables alone
constexpr bool isOfPictures(std::string_view key) {
    return key == "id" || key == "type_name" || key == "offloaded" || key == "time_us";
}

/// Writes what `fieldsOf` knows, and lists and options of it, as JSON.
class FieldsWriter {
public:
    /// @param audience a page has lists of layers as columns, and what is not of pictures elsewhere
    /// @param maxExecutions of a graph that has more of them the columns are empty
    explicit FieldsWriter(JsonWriter& json, Audience audience = Audience::program,
                          std::size_t maxExecutions = std::numeric_limits<std::size_t>::max())
        : json_(json), audience_(audience), maxExecutions_(maxExecutions) {}

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

    /// Writes an object with a list for each key that is wanted: the values that the elements have for it.
    template <typename Element, typename IsWanted>
    void putColumns(const std::vector<Element>& list, IsWanted isWanted) {
        const Element none{};
        std::size_t column = 0;
        json_.beginObject();
        fieldsOf(none, [&](std::string_view key, const auto& /*of none*/) {
            if (isWanted(key)) {
                json_.key(key);
                putColumn(list, column);
            }
            ++column;
        });
        json_.endObject();
    }

    void put(const analysis::Executions& executions) {
        static const analysis::Executions none;
        json_.beginObject();
        putMembers(executions.count() > maxExecutions_ ? none : executions);
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
        if constexpr (std::same_as<Element, analysis::ZebLayer>) {
            if (audience_ == Audience::page) {
                return putColumns(list, [](std::string_view) { return true; });
            }
        }
        if constexpr (std::same_as<Element, analysis::OruLayer>) {
            if (audience_ == Audience::page) {
                return putColumns(list, isOfPictures);
            }
        }
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
    /// @param column the position of its key
    template <typename Element>
    void putColumn(const std::vector<Element>& list, std::size_t column) {
        json_.beginList();
        for (const Element& element : list) {
            std::size_t at = 0;
            fieldsOf(element, [&](std::string_view, const auto& member) {
                if (at++ == column) {
                    put(member);
                }
            });
        }
        json_.endList();
    }

    JsonWriter& json_;
    Audience audience_;
    std::size_t maxExecutions_;
};

}  // namespace zeb::forms
