#include "console/ConsoleStyle.h"

#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace zeb::console {

namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

// The process itself stays in the classic locale.
bool isLocaleOfUtf8() {
    ::locale_t locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) {
        return false;
    }
    const bool isUtf8 = std::string_view(::nl_langinfo_l(CODESET, locale)) == "UTF-8";
    ::freelocale(locale);
    return isUtf8;
}

}  // namespace

ConsoleStyle styleOfTerminal(int descriptor) {
    ConsoleStyle style;
    style.hasUnicode = isLocaleOfUtf8();
    if (::isatty(descriptor) != 1) {
        return style;
    }
    style.hasColour = environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    winsize size{};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        style.width = size.ws_col;
    }
    return style;
}

}  // namespace zeb::console
