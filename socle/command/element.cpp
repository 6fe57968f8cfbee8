#include "socle/command/element.h"

#include "socle/un/tokenizer.h"

#include <algorithm>

namespace command {

element::element(narrow_string const & names, narrow_string const & description, bool required)
    : names_(un::tokenizer(names, '|')), description_(description), required_(required) {}

element::~element() = default;

void element::parse(narrow_string const &) {}

bool element::matches(narrow_string const & name) const {
    return std::find(names_.begin(), names_.end(), name) != names_.end();
}

} // namespace command
