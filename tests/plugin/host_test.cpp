#include "socle/socle.h"
#include "tests/plugin/plugin.h"
#include "tests/support/system.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <typeinfo>
#include <vector>

namespace {

void expect_words(qpthr::QpUserException const & e) {
    EXPECT_EQ(e.code(), plugin_error);
    EXPECT_STREQ(e.text(), plugin_message);
}

void expect_words(un::exception const & e) {
    EXPECT_EQ(e.message(), plugin_message);
    EXPECT_EQ(e.origin(), plugin_origin);
    if (auto const * with_error = dynamic_cast<io::exception const *>(&e))
        EXPECT_EQ(with_error->error(), plugin_error);
}

void expect_words(basic::exception const & e) { EXPECT_EQ(e.message(), plugin_message); }

void expect_words(nio::filesystem_exception const & e) { EXPECT_TRUE(e.message().starts_with(plugin_message)); }

/// Takes `thrown` with a handler for its very class.
template <class Exception>
void expect_caught(std::exception_ptr const & thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (Exception const & e) {
        EXPECT_EQ(typeid(e), typeid(Exception));
        expect_words(e);
    } catch (...) {
        ADD_FAILURE() << "not caught as " << typeid(Exception).name();
    }
}

struct row {
    char const * class_name;
    void (*expect)(std::exception_ptr const &);
};

constexpr row rows[] = {
    {"qpthr::QpUserException", expect_caught<qpthr::QpUserException>},
    {"un::exception", expect_caught<un::exception>},
    {"stream::exception", expect_caught<stream::exception>},
    {"any::exception", expect_caught<any::exception>},
    {"command::exception", expect_caught<command::exception>},
    {"io::exception", expect_caught<io::exception>},
    {"basic::exception", expect_caught<basic::exception>},
    {"nio::exception", expect_caught<nio::exception>},
    {"nio::filesystem_exception", expect_caught<nio::filesystem_exception>},
};

using library = std::unique_ptr<support::library>;

template <class Entry>
Entry * entry(library const & plugin, char const * name) {
    return reinterpret_cast<Entry *>(plugin->find(name));
}

std::exception_ptr caught(plugin_throw_entry * plugin_throw, char const * class_name) {
    try {
        plugin_throw(class_name);
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

TEST(plugin, throws_every_class_to_its_host_and_goes) {
    // A host that takes nothing from the library would not keep it loaded.
    ASSERT_EQ(basic::version(), SOCLE_VERSION);
    int unloads = 0;
    for (int load = 1; load <= 100 && !HasFailure(); ++load) {
        ASSERT_FALSE(support::library::is_loaded(SOCLE_TEST_PLUGIN)) << "still loaded from before";
        auto plugin = std::make_unique<support::library>(SOCLE_TEST_PLUGIN);
        ASSERT_TRUE(support::library::is_loaded(SOCLE_TEST_PLUGIN));
        auto * const plugin_start = entry<plugin_start_entry>(plugin, "plugin_start");
        auto * const plugin_throw = entry<plugin_throw_entry>(plugin, "plugin_throw");
        ASSERT_TRUE(plugin_start && plugin_throw);
        plugin_start(&unloads);

        std::vector<std::exception_ptr> kept;
        for (auto const & [class_name, expect] : rows) {
            SCOPED_TRACE(class_name);
            kept.push_back(caught(plugin_throw, class_name));
            ASSERT_NE(kept.back(), nullptr);
            expect(kept.back());
        }
        if (!support::shares_type_information())
            kept.clear();
        std::exception_ptr const raised = caught(plugin_throw, "raised");
        plugin.reset();
        EXPECT_FALSE(support::library::is_loaded(SOCLE_TEST_PLUGIN)) << "the plug-in is pinned";
        EXPECT_EQ(unloads, load);

        // Exceptions that belong to the library outlive the plug-in that threw them.
        for (std::size_t i = 0; i < kept.size(); ++i) {
            SCOPED_TRACE(rows[i].class_name);
            rows[i].expect(kept[i]);
        }
        expect_caught<io::exception>(raised);
    }
}

} // namespace
