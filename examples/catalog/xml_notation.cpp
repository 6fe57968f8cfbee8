#include "catalogue.h"

#include "common/xml_text.h"

#include <socle/stream/xml_output.h>

namespace {

class xml : public notation {
public:
    explicit xml(stream::output & target) : out_(target, "catalog", "catalog.xsd", 1) {}

    void begin() override { out_.begin(); }
    void end() override { out_.end(); }

    void begin_entry(narrow_string const & kind, fields const & named) override {
        tag(kind, named);
        out_.close_begin_tag();
        out_.indent();
    }
    void end_entry(narrow_string const & kind) override {
        out_.unindent();
        out_.end_tag(kind);
    }
    void begin_contents() override {}
    void end_contents() override {}

    void field(narrow_string const & name, narrow_string const & value) override {
        out_.string_element(name, xml_text(value));
    }
    void group(narrow_string const & name, fields const & values) override {
        tag(name, values);
        out_.tag("/>");
        out_.eol();
    }
    void notes(std::vector<narrow_string> const & notes) override {
        for (auto const & note : notes)
            field("note", note);
    }

private:
    void tag(narrow_string const & name, fields const & values) {
        out_.open_begin_tag(name);
        for (auto const & [key, value] : values)
            out_.string_attribute(key, xml_text(value));
    }

    stream::xml_output out_;
};

} // namespace

std::unique_ptr<notation> xml_notation(stream::output & target) { return std::make_unique<xml>(target); }
