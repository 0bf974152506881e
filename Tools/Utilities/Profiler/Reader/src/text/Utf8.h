#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts of a log may be any bytes; these take them for UTF-8 as far as they are.
namespace zeb::profiling {

/// What stands at the front of a text.
struct FrontCharacter {
    enum class State : unsigned char {
        whole,     ///< a character
        faulty,    ///< bytes that no character begins with
        endsEarly  ///< the beginning of a character, and the text ends there
    };
    State state;
    std::size_t length;  ///< bytes; of a faulty one those that could have begun a character, or 1
};

/// @param text not empty
FrontCharacter frontCharacter(std::string_view text);

/// @param character a whole one
/// @return its number
char32_t codeOf(std::string_view character);

/// @return whether a character shows nothing and does something: a control character, a mark, override or
/// isolate of the writing direction, a separator of lines or paragraphs
bool isControl(char32_t code);

/// What stands in the place of what is no character.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// @return the text with each fault replaced
std::string wellFormed(std::string_view text);

/// Shortens a text by what stands in its middle, and puts an ellipsis there. Work depends on `size` alone.
/// @param size bytes that the result has at most; 16 or more
/// @return the text itself if it is no longer; well-formed UTF-8 stays so
std::string cutInMiddle(std::string_view text, std::size_t size);

}  // namespace zeb::profiling
