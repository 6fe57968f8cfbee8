#include "socle/any/exception.h"
#include "socle/basic/exception.h"
#include "socle/command/exception.h"
#include "socle/io/exception.h"
#include "socle/nio/exception.h"
#include "socle/stream/exception.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <typeinfo>

namespace {

TEST(qp_exception, text_is_cut_to_its_array) {
    struct row {
        char const * given;
        narrow_string kept;
    };
    narrow_string const long_text(200, 'x');
    for (auto const & [given, kept] :
         {row{nullptr, ""}, row{"", ""}, row{"short", "short"}, row{long_text.c_str(), narrow_string(79, 'x')}}) {
        qpthr::QpUserException const e(7, given);
        EXPECT_EQ(e.text(), kept);
        EXPECT_EQ(e.code(), 7);
    }
}

TEST(un_exception, carries_its_words_and_nothing_else) {
    stream::exception const e("message", "origin");
    EXPECT_EQ(e.message(), "message");
    EXPECT_EQ(e.origin(), "origin");
    EXPECT_EQ(e.code(), 0);
    EXPECT_STREQ(e.text(), "");
    EXPECT_STREQ(e.Name(), "QpUserException");
    EXPECT_STREQ(e.what(), std::exception().what());
}

/// The dynamic type of what `action` throws.
template <class Base>
std::type_info const & thrown(std::function<void()> const & action) {
    try {
        action();
    } catch (Base const & e) {
        return typeid(e);
    }
    return typeid(void);
}

TEST(cloned_exception, clones_as_itself_and_raises_by_the_table) {
    qpthr::QpUserException const user(3, "text");
    un::exception const un("m", "o");
    stream::exception const stream("m", "o");
    io::exception const io("m", "o", -5);
    any::exception const any("m", "o");
    command::exception const command("m", "o");
    struct row {
        qpthr::QpClonedException const & original;
        std::type_info const & raised;
    };
    for (auto const & [original, raised] :
         {row{user, typeid(user)}, row{un, typeid(un)}, row{stream, typeid(stream)}, row{io, typeid(io)},
          row{any, typeid(un::exception)}, row{command, typeid(un::exception)}}) {
        std::unique_ptr<qpthr::QpClonedException> const clone(original.Clone());
        qpthr::QpClonedException const & copy = *clone;
        EXPECT_EQ(typeid(copy), typeid(original));
        EXPECT_EQ(thrown<std::exception>([&] { clone->Raise(); }), raised) << typeid(original).name();
        try {
            clone->Raise();
        } catch (un::exception const & e) {
            EXPECT_EQ(e.message(), "m");
            EXPECT_EQ(e.origin(), "o");
            if (auto const * with_error = dynamic_cast<io::exception const *>(&e))
                EXPECT_EQ(with_error->error(), -5);
        } catch (qpthr::QpUserException const & e) {
            EXPECT_EQ(e.code(), 3);
            EXPECT_STREQ(e.text(), "text");
        }
    }
}

TEST(cloned_exception, assignment_copies_every_field) {
    io::exception target("a", "b", 1);
    target = io::exception("message", "origin", 2);
    EXPECT_EQ(target.message(), "message");
    EXPECT_EQ(target.origin(), "origin");
    EXPECT_EQ(target.error(), 2);
}

TEST(basic_exception, is_a_line_of_its_own) {
    static_assert(!std::is_base_of_v<std::exception, nio::exception>);
    static_assert(!std::is_polymorphic_v<nio::exception>);
    try {
        throw nio::exception("words");
    } catch (std::exception const &) {
        FAIL() << "a handler for std::exception caught it";
    } catch (basic::exception const & e) {
        EXPECT_EQ(e.message(), "words");
    }
}

} // namespace
