#include "socle/nio/exception.h"

#include <typeinfo>

namespace nio {

namespace {

// These classes have no virtual operation that would keep their type information in the library. Kept here, it lets an
// exception outlive the plug-in that threw it.
[[gnu::used]] std::type_info const * const kept[] = {&typeid(basic::exception), &typeid(exception)};

} // namespace

exception::exception(narrow_string const & message) : basic::exception(message) {}

exception::exception(exception const &) = default;

exception & exception::operator=(exception const &) = default;

exception::~exception() = default;

} // namespace nio
