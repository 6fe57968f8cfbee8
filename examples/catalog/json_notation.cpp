#include "catalogue.h"

#include <algorithm>

namespace {

/// Text that is fit to be read needs little more to stand in JSON.
narrow_string quoted(narrow_string const & text) {
    narrow_string result = "\"";
    for (char const c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

narrow_string value_text(narrow_string const & value) {
    bool const number = std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; });
    return number || value == "true" || value == "false" ? value : quoted(value);
}

/// One object for the folder that is walked, with an entry on each line.
class json : public notation {
public:
    explicit json(stream::output & target) : out_(target) {}

    void begin() override {}
    void end() override { out_.write("\n"); }

    void begin_entry(narrow_string const & kind, fields const & named) override {
        out_.write(first_ ? "" : ",");
        out_.write((depth_ > 0 ? "\n" : "") + narrow_string(depth_, ' ') + "{\"kind\": " + quoted(kind));
        for (auto const & [name, value] : named)
            field(name, value);
        first_ = false;
    }
    void end_entry(narrow_string const &) override {
        out_.write("}");
        first_ = false;
    }
    void begin_contents() override {
        out_.write(", \"entries\": [");
        first_ = true;
        ++depth_;
    }
    void end_contents() override {
        --depth_;
        out_.write("]");
    }

    void field(narrow_string const & name, narrow_string const & value) override {
        out_.write(", " + quoted(name) + ": " + quoted(value));
    }
    void group(narrow_string const & name, fields const & values) override {
        out_.write(", " + quoted(name) + ": {");
        for (std::size_t i = 0; i < values.size(); ++i)
            out_.write((i > 0 ? ", " : "") + quoted(values[i].first) + ": " + value_text(values[i].second));
        out_.write("}");
    }
    void notes(std::vector<narrow_string> const & notes) override {
        if (notes.empty())
            return;
        out_.write(", \"notes\": [");
        for (std::size_t i = 0; i < notes.size(); ++i)
            out_.write((i > 0 ? ", " : "") + quoted(notes[i]));
        out_.write("]");
    }

private:
    stream::output & out_;
    bool first_ = true;
    std::size_t depth_ = 0;
};

} // namespace

std::unique_ptr<notation> json_notation(stream::output & target) { return std::make_unique<json>(target); }
