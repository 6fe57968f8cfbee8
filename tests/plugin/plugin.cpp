#include "tests/plugin/plugin.h"

#include "socle/socle.h"

#include <stdexcept>
#include <string_view>

namespace {

/// Has a static object whose destructor runs when the plug-in really goes.
struct unload_counter {
    int * unloads = nullptr;

    ~unload_counter() {
        if (unloads)
            ++*unloads;
    }
} counter;

template <class Exception>
[[noreturn]] void throw_spoken() {
    throw Exception(plugin_message, plugin_origin);
}

template <class Exception>
[[noreturn]] void throw_plain() {
    throw Exception(plugin_message);
}

struct row {
    std::string_view class_name;
    void (*throw_it)();
};

constexpr row rows[] = {
    {"qpthr::QpUserException", [] { throw qpthr::QpUserException(plugin_error, plugin_message); }},
    {"un::exception", throw_spoken<un::exception>},
    {"stream::exception", throw_spoken<stream::exception>},
    {"any::exception", throw_spoken<any::exception>},
    {"command::exception", throw_spoken<command::exception>},
    {"io::exception", [] { throw io::exception(plugin_message, plugin_origin, plugin_error); }},
    {"raised", [] { io::exception(plugin_message, plugin_origin, plugin_error).Raise(); }},
    {"basic::exception", throw_plain<basic::exception>},
    {"nio::exception", throw_plain<nio::exception>},
    {"nio::filesystem_exception", [] { throw nio::filesystem_exception(plugin_message, u"path"); }},
};

} // namespace

extern "C" void plugin_start(int * unloads) { counter.unloads = unloads; }

extern "C" void plugin_throw(char const * class_name) {
    for (auto const & [name, throw_it] : rows)
        if (name == class_name)
            throw_it();
    throw std::logic_error("the plug-in does not know this class");
}
