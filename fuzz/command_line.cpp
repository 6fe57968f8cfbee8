/// The command line, and the tokens, digits and numbers that it is made of.

#include "fuzz/support/feed.h"
#include "socle/command/exception.h"
#include "socle/command/line.h"
#include "socle/command/option.h"
#include "socle/un/digits.h"
#include "socle/un/parser.h"
#include "socle/un/tokenizer.h"

namespace {

using fuzz::check;

int plain_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    char const lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

uint64 plain_number(narrow_string const & text, int radix) {
    uint64 value = 0;
    for (std::size_t i = 0; i < text.size() && plain_digit(text[i]) >= 0; ++i)
        value = value * static_cast<uint64>(radix) + static_cast<uint64>(plain_digit(text[i]));
    return value;
}

void arguments(std::vector<narrow_string> const & given) {
    std::vector<char const *> argv = {"program"};
    for (auto const & argument : given)
        argv.push_back(argument.c_str());
    command::line line(static_cast<int>(argv.size()), argv.data());
    command::option<bool> toggle{line, "--bool|-b", false, ""};
    command::option<int> count{line, "--int|-i", 5, ""};
    command::option<narrow_string> text{line, "--string|-s", "none", ""};
    command::option<char> letter{line, "-c", 'x', ""};

    bool wanted_toggle = false, refused = false;
    int wanted_count = 5;
    narrow_string wanted_text = "none";
    char wanted_letter = 'x';
    std::vector<narrow_string> wanted;
    narrow_string bad;
    for (auto const & argument : given) {
        narrow_string const seen = argument.c_str();
        auto const pieces = fuzz::pieces_of(seen, "=");
        narrow_string const value = pieces.size() > 1 ? pieces[1] : "";
        auto const & name = pieces[0];
        if (!seen.starts_with('-')) {
            wanted.push_back(seen);
        } else if (name == "--bool" || name == "-b") {
            wanted_toggle = !wanted_toggle;
        } else if (name == "--int" || name == "-i") {
            wanted_count = static_cast<int>(static_cast<uint32>(plain_number(value, 10)));
        } else if (name == "--string" || name == "-s") {
            wanted_text = value;
        } else if (name == "-c") {
            wanted_letter = value.empty() ? '\0' : value[0];
        } else {
            refused = true;
            bad = seen;
            break;
        }
    }
    try {
        line.digest();
        check(!refused);
    } catch (command::exception const & e) {
        check(refused && e.message() == "unknown parameter \"" + bad + '"');
    }
    check(line == wanted && toggle() == wanted_toggle && count() == wanted_count && text() == wanted_text
          && letter() == wanted_letter);
}

void scan(narrow_string const & text, narrow_string const & delimiters) {
    char const * const set = delimiters.c_str();
    check(un::tokenizer(text, set) == fuzz::pieces_of(text, set));

    // A parser comes to the same pieces.
    un::parser parser(text, 0);
    std::vector<narrow_string> pieces;
    for (;;) {
        pieces.push_back(parser.string(set));
        if (parser.eos())
            break;
        check(parser.position() < text.size());
        parser = un::parser(text, parser.position() + 1);
    }
    check(pieces == fuzz::pieces_of(text, set));

    for (un::parser numbers(text, 0); !numbers.eos();) {
        uint32 const before = numbers.position();
        numbers.skip_until("0123456789abcdefABCDEF");
        if (numbers.eos())
            break;
        check(numbers.position() >= before);
        uint32 const start = numbers.position();
        uint64 const value = numbers.number(16);
        check(value == plain_number(text.substr(start), 16));
        check(!numbers.eos() && numbers.position() > start && numbers.position() <= text.size());
        if (numbers.position() == text.size())
            break;
    }
}

void digits(narrow_string const & text, uint64 value, int radix, int width) {
    check(un::read(text, radix) == plain_number(text, radix));
    narrow_string const written = un::write(value, radix, width);
    check(int(written.size()) >= width);
    if (radix <= 16)
        check(un::read(written, radix) == value);
    check(un::hex(text).size() == 2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        check(un::hex(text).substr(2 * i, 2) == un::to_hex(text[i]));
        check(un::read(un::to_hex(text[i]), 16) == static_cast<unsigned char>(text[i]));
        if (i > 64)
            break;
    }
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    narrow_string const delimiters = in.text();
    int const radix = 2 + int(in.below(35)), width = int(in.below(80));
    uint64 const value = in.long_number();
    narrow_string const text(in.rest());
    scan(text, delimiters);
    digits(text, value, radix, width);
    arguments(fuzz::pieces_of(text, "\n"));
}
