#include "socle/command/exception.h"
#include "socle/command/line.h"
#include "socle/command/option.h"

#include <gtest/gtest.h>

#include <limits>

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

TEST(command_line, digests_options_and_parameters) {
    struct row {
        arguments given;
        bool toggle;
        int count;
        narrow_string text;
        std::vector<narrow_string> parameters;
    };
    for (auto const & [given, toggle, count, text, parameters] : {
             row{{"--int=9", "--str=q", "--int", "--str"}, false, 0, "", {}},
             row{{"--int=4294967297", "-s="}, false, 1, "", {}},
             row{{"--int=2147483648"}, false, std::numeric_limits<int>::min(), "", {}},
             row{{"file.txt", "-b", "", "a=-b"}, true, 0, "", {"file.txt", "", "a=-b"}},
         }) {
        program run(given);
        run.line.digest();
        EXPECT_EQ(run.toggle(), toggle);
        EXPECT_EQ(run.count(), count);
        EXPECT_EQ(run.text(), text);
        EXPECT_EQ(run.line, parameters);
    }
}

TEST(command_line, further_kinds) {
    program run({"-c=yes", "--size=4294967295"});
    EXPECT_FALSE(run.letter.found());
    run.line.digest();
    EXPECT_TRUE(run.letter.found());
    EXPECT_EQ(run.letter(), 'y');
    EXPECT_EQ(run.size(), 0xFFFFFFFFu);
}

TEST(command_line, refuses_what_is_not_declared) {
    for (char const * argument : {"-", "--", "-5", "--INT=1", "--in", "-x=y=z", "-=1"}) {
        program run({"-i=4", argument, "-i=5"});
        EXPECT_EQ(refusal(run.line), "unknown parameter \"" + narrow_string(argument) + '"');
        EXPECT_EQ(run.count(), 4) << "what stood before it holds";
    }
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

} // namespace
