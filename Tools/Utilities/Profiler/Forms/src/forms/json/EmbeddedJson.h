#pragma once

#include <functional>
#include <ostream>

/// JSON within a page.
namespace zeb::forms {

/// Lets JSON be written to where a script element holds it. What could end the element, or begin a comment in
/// it, can only stand within strings of JSON, and there it gets another form. When a part of it can't be
/// written, `out` is bad.
void writeEmbedded(std::ostream& out, const std::function<void(std::ostream& json)>& write);

}  // namespace zeb::forms
