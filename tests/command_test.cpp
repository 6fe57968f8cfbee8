#include "socle/command/exception.h"
#include "socle/command/line.h"
#include "socle/command/option.h"
#include "socle/un/digits.h"
#include "socle/un/parser.h"
#include "socle/un/tokenizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace {

using arguments = std::vector<char const *>;

/// A line with the options of a small program, over the arguments behind its name.
struct program {
    explicit program(arguments const & given) : line(static_cast<int>(given.size() + 1), with_name(given).data()) {}

    static arguments with_name(arguments given) {
        given.insert(given.begin(), "program");
        return given;
    }

    command::line line;
    command::option<bool> toggle{line, "--bool|-b", false, "switch"};
    command::option<int> count{line, "--int|-i", 0, "count"};
    command::option<narrow_string> text{line, "--string|--str|-s", "", "words"};
    command::option<char> letter{line, "-c", 'x', "letter"};
    command::option<unsigned int> size{line, "--size", 7, "size"};
};

/// The message of what `digest` raises, its origin checked.
narrow_string refusal(command::line & line) {
    try {
        line.digest();
    } catch (command::exception const & e) {
        EXPECT_EQ(e.origin(), "command");
        return e.message();
    }
    return "nothing raised";
}

TEST(command_line, further_kinds) {
    program run({"-c=yes", "--size=4294967295", "--int=2147483648", "-s=a", "--str"});
    EXPECT_FALSE(run.letter.found());
    run.line.digest();
    EXPECT_TRUE(run.letter.found());
    EXPECT_EQ(run.letter(), 'y');
    EXPECT_EQ(run.size(), 0xFFFFFFFFu);
    EXPECT_EQ(run.count(), std::numeric_limits<int>::min());
    EXPECT_EQ(run.text(), "");
}

TEST(command_line, required_options_of_the_programs_own) {
    struct flag : command::element {
        using element::element;
        void parse(narrow_string const &) override { found(true); }
    };
    for (bool const given : {false, true}) {
        program run(given ? arguments{"--in"} : arguments{});
        flag optional("--maybe", "", false);
        flag needed("-n|--in", "", true);
        command::element silent("--other", "", true);
        run.line.add(&optional);
        run.line.add(&needed);
        run.line.add(&silent);
        EXPECT_EQ(refusal(run.line),
                  given ? "required option \"--other\" not found on command line" // its parse never says it was found
                        : "required option \"-n\" not found on command line");
    }
}

TEST(command_line, repeats_and_copies) {
    program run({"-b", "x"});
    run.line.digest();
    command::option<bool> const copy = run.toggle;
    run.line.digest();
    EXPECT_FALSE(run.toggle());
    EXPECT_TRUE(command::option<bool>(copy)());
    EXPECT_EQ(run.line, (std::vector<narrow_string>{"x", "x"}));
    EXPECT_EQ(run.line.options().size(), 5u) << "a copied option is registered nowhere";
    EXPECT_EQ(command::line(run.line).options(), run.line.options());
    for (int const argc : {0, -3}) {
        command::line none(argc, nullptr);
        none.digest();
        EXPECT_TRUE(none.empty());
    }
}

narrow_string shown(command::line const & line) {
    testing::internal::CaptureStdout();
    line.show_options("tool");
    return testing::internal::GetCapturedStdout();
}

TEST(command_line, shows_the_options_to_the_column) {
    EXPECT_EQ(shown(command::line(0, nullptr)), "\nList of supported options for tool:\nthere are no options\n");
    program run({});
    command::option<bool> wide(run.line, "--a-name-wider-than-its-field", false, "wide");
    EXPECT_EQ(shown(run.line), "\n"
                               "List of supported options for tool:\n"
                               "                --bool  -b    switch\n"
                               "                 --int  -i    count\n"
                               "              --string                 --str  -s    words\n"
                               "  -c        letter\n"
                               "                --size        size\n"
                               "--a-name-wider-than-its-field        wide\n"
                               "\n");
}

using tokens = std::vector<narrow_string>;

TEST(digits, every_byte_in_every_radix) {
    narrow_string const lower = "0123456789abcdefghijklmnopqrstuvwxyz";
    narrow_string const upper = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int const radix : {-1, 0, 1, 2, 9, 10, 11, 16, 36, 37, 300}) {
        for (int byte = 0; byte < 256; ++byte) {
            auto const c = static_cast<char>(byte);
            std::size_t const value = std::min(lower.find(c), upper.find(c));
            bool const digit = radix >= 2 && value < 36 && value < static_cast<std::size_t>(radix);
            EXPECT_EQ(un::is_digit(c, radix), digit) << byte << " in " << radix;
            EXPECT_EQ(un::from_digit(c, radix), digit ? value : 0) << byte << " in " << radix;
            char const written = radix >= 2 && byte < radix && byte < 36 ? lower[static_cast<unsigned>(byte)] : '\0';
            EXPECT_EQ(un::to_digit(static_cast<unsigned char>(byte), radix), written) << byte << " in " << radix;
        }
    }
}

TEST(digits, read_takes_hexadecimal_digits_in_any_radix) {
    struct row {
        char const * text;
        int radix;
        uint64 value;
    };
    for (auto const & [text, radix, value] :
         {row{"123abc", 10, 124122}, row{"77", 1, 0}, row{"77", 0, 0}, row{"77", -3, 0}, row{"1g", 37, 1}})
        EXPECT_EQ(un::read(text, radix), value) << text << " in " << radix;
}

TEST(digits, write_fills_to_its_width) {
    struct row {
        uint64 value;
        int radix;
        int width;
        narrow_string text;
    };
    for (auto const & [value, radix, width, text] :
         {row{0, 10, 1, "0"}, row{0, 10, 0, ""}, row{0, 10, -1, ""}, row{255, 16, 1, "ff"}, row{255, 16, 4, "00ff"},
          row{1000, 10, 2, "1000"}, row{all_ones, 2, 66, "00" + narrow_string(64, '1')},
          row{all_ones, 10, 1, "18446744073709551615"}, row{36 * 17 + 15, 36, 1, narrow_string("\0f", 2)},
          row{36 * 17 + 15, 37, 1, narrow_string("\0\0", 2)}, row{300, 301, 3, narrow_string("00\0", 3)},
          row{7, 1, 4, ""}, row{7, 0, 4, ""}, row{7, std::numeric_limits<int>::min(), 4, ""},
          row{7, 10, std::numeric_limits<int>::min(), "7"}})
        EXPECT_EQ(un::write(value, radix, width), text) << value << " in " << radix;
}

TEST(parser, numbers_follow_the_radix) {
    un::parser parser("42g1 z7", 0);
    EXPECT_EQ(parser.number(10), 42u);
    EXPECT_EQ(parser.number(10), 0u);
    EXPECT_EQ(parser.position(), 2u);
    EXPECT_EQ(parser.number(1), 0u);
    EXPECT_EQ(parser.position(), 2u);
    EXPECT_EQ(parser.number(17), 1u) << "a letter past f counts 0";
    parser.skip_until("z");
    EXPECT_EQ(parser.position(), 5u);
    EXPECT_EQ(parser.number(36), 7u);
    EXPECT_FALSE(parser.eos());
    EXPECT_EQ(parser.position(), 7u);
    EXPECT_EQ(parser.number(36), 0u);
    EXPECT_EQ(parser.string(","), "");
    EXPECT_TRUE(parser.eos());
}

TEST(parser, ends_the_scan) {
    un::parser blanks("   ", 0);
    blanks.skip_through(" ");
    EXPECT_TRUE(blanks.eos());
    EXPECT_EQ(blanks.string(","), "");
    blanks.skip_until("a");
    blanks.skip_through("a");
    EXPECT_TRUE(blanks.eos());
    un::parser missing("abc", 1);
    missing.skip_until("a");
    EXPECT_TRUE(missing.eos());
    un::parser beyond("abc", 4);
    EXPECT_EQ(beyond.number(16), 0u);
    EXPECT_THROW(beyond.string(","), std::out_of_range);
    EXPECT_EQ(beyond.position(), 4u);
}

TEST(tokenizer, cuts_one_of_its_own_tokens) {
    un::tokenizer cut("1:2:3,4:5", ",");
    cut.init(cut[0], ":");
    EXPECT_EQ(cut, (tokens{"1", "2", "3"}));
    EXPECT_EQ(un::tokenizer(narrow_string("a\0b", 3), '\0'), (tokens{"a", "b"}));
}

} // namespace
