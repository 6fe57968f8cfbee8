#include "socle/command/line.h"

#include "socle/command/exception.h"
#include "socle/un/tokenizer.h"

#include <algorithm>
#include <iostream>

namespace command {

namespace {

/// The names in columns, the description behind them: column 31 after a long and a short name, or one long name.
narrow_string table_line(element const & option) {
    narrow_string result;
    for (auto const & name : option.names()) {
        std::size_t const width = name.size() >= 3 ? 22 : 4;
        result.append(width - std::min(width, name.size()), ' ') += name;
    }
    if (option.names().size() == 1)
        result += "    ";
    return result + "    " + option.description();
}

} // namespace

line::line(int argc, char const * const * argv) : argc_(argc), argv_(argv, argv + std::max(argc, 0)) {}

void line::add(command::element * element) { options_.push_back(element); }

void line::digest() {
    for (std::size_t i = 1; i < argv_.size(); ++i) {
        auto const & argument = argv_[i];
        if (!argument.starts_with('-')) {
            push_back(argument);
            continue;
        }
        un::tokenizer const pieces(argument, '=');
        auto const option = std::find_if(options_.begin(), options_.end(),
                                         [&](auto const * candidate) { return candidate->matches(pieces[0]); });
        if (option == options_.end())
            throw exception("unknown parameter \"" + argument + '"', "command");
        (*option)->parse(pieces.size() > 1 ? pieces[1] : narrow_string());
    }
    verify();
}

void line::show_options(narrow_string const & title) const {
    std::cout << std::endl << "List of supported options for " << title << ':' << std::endl;
    if (options_.empty())
        std::cout << "there are no options";
    for (auto const * option : options_)
        std::cout << table_line(*option) << std::endl;
    std::cout << std::endl;
}

void line::verify() const {
    for (auto const * option : options_)
        if (option->required() && !option->found())
            throw exception("required option \"" + option->names().front() + "\" not found on command line", "command");
}

} // namespace command
