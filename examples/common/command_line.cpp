#include "command_line.h"

#include "host_text.h"

#include <socle/command/exception.h>
#include <socle/command/line.h>
#include <socle/platform/host.h>

#include <algorithm>
#include <iostream>

command_line::command_line(int argc, char const * const * argv, description const & about)
    : arguments_(platform::arguments(argc, argv)), about_(about) {}

void command_line::add(command::element * element, narrow_string const & value_name) {
    declared_.push_back({element, value_name});
}

std::vector<narrow_string> command_line::read() {
    std::vector<narrow_string> operands, names = {about_.program};
    bool options_end = false;
    for (std::size_t i = 1; i < arguments_.size(); ++i) {
        auto const & argument = arguments_[i];
        if (options_end || argument == "-" || !argument.starts_with('-')) {
            operands.push_back(argument);
            continue;
        }
        options_end = argument == "--";
        if (options_end)
            continue;
        auto const equals = argument.find('=');
        auto const name = argument.substr(0, equals);
        auto const * const option = find(name);
        names.push_back(option ? name : readable_path(argument));
        if (!option)
            continue;
        bool const takes_value = !option->value_name.empty();
        if (!takes_value && equals != narrow_string::npos)
            throw usage_error(name + " takes no value");
        if (!takes_value)
            continue;
        bool const apart = equals == narrow_string::npos && i + 1 < arguments_.size();
        auto const value = apart ? arguments_[++i] : argument.substr(std::min(equals, argument.size() - 1) + 1);
        if (value.empty())
            throw usage_error(name + " takes a value: " + name + ' ' + option->value_name);
        values_.push_back(value);
    }
    std::vector<char const *> pointers;
    for (auto const & name : names)
        pointers.push_back(name.c_str());
    command::line line(static_cast<int>(pointers.size()), pointers.data());
    for (auto const & each : declared_)
        line.add(each.element);
    try {
        line.digest();
    } catch (command::exception const & e) {
        throw usage_error(e.message());
    }
    return operands;
}

narrow_string command_line::next_value() {
    narrow_string const value = values_.front();
    values_.pop_front();
    return value;
}

void command_line::show_help() const {
    constexpr std::size_t width = 24;
    std::cout << "Usage: " << about_.program << " [options] " << about_.operands << '\n'
              << about_.purpose << "\n\nOptions:\n";
    for (auto const & each : declared_) {
        narrow_string head;
        for (auto const & name : each.element->names())
            head += (head.empty() ? "  " : ", ") + name;
        head += each.value_name.empty() ? "" : ' ' + each.value_name;
        std::cout << head;
        if (head.size() + 2 > width)
            std::cout << '\n' << narrow_string(width, ' ');
        else
            std::cout << narrow_string(width - head.size(), ' ');
        for (char const c : each.element->description()) {
            std::cout << c;
            if (c == '\n')
                std::cout << narrow_string(width, ' ');
        }
        std::cout << '\n';
    }
    std::cout << "\nExamples:\n" << about_.examples << "\nExit status:\n" << about_.statuses;
}

void command_line::show_version() const { std::cout << about_.program << " (socle) " << EXAMPLE_VERSION << '\n'; }

command_line::declared const * command_line::find(narrow_string const & name) const {
    auto const found = std::find_if(declared_.begin(), declared_.end(),
                                    [&](declared const & each) { return each.element->matches(name); });
    return found == declared_.end() ? nullptr : &*found;
}

flag::flag(command_line & line, narrow_string const & names, narrow_string const & description)
    : element(names, description, false) {
    line.add(this, "");
}

void flag::parse(narrow_string const &) { found(true); }

text::text(command_line & line, narrow_string const & names, narrow_string const & value_name,
           narrow_string const & description)
    : element(names, description, false), line_(line) {
    line.add(this, value_name);
}

void text::parse(narrow_string const &) {
    values_.push_back(line_.next_value());
    found(true);
}

std::vector<narrow_string> parts_of_list(narrow_string const & list) {
    std::vector<narrow_string> parts;
    for (std::size_t at = 0, comma; at <= list.size(); at = comma + 1) {
        comma = std::min(list.find(',', at), list.size());
        parts.push_back(list.substr(at, comma - at));
    }
    return parts;
}
