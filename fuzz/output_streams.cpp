/// A stack of sinks, put together and used at random, beside a model: what has been written, and for each layer what it
/// counts. What buffers hold counts as written; it has to be there when they are gone.

#include "fuzz/support/feed.h"
#include "fuzz/support/stacked.h"
#include "socle/stream/array_output.h"
#include "socle/stream/buffered_output.h"
#include "socle/stream/counted_output.h"
#include "socle/stream/endian_output.h"
#include "socle/stream/multi_output.h"
#include "socle/stream/text_output.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

#include <memory>
#include <optional>
#include <vector>

namespace {

using fuzz::check;

enum class bottom { vector, array, series, plain, count };
enum class layer { filter, counted, buffered, text, little, count };

constexpr std::size_t array_size = 600;

struct model_layer {
    layer kind;
    uint64 count = 0; // of a layer that has a position of its own
    int mode = 0;     // of a text
    bool after_cr = false;
};

class model {
public:
    std::vector<model_layer> layers;
    narrow_string bytes;

    /// How the bytes come down through the layers below `height`. Text goes past those that look at bytes.
    void write(std::size_t height, std::string_view data, bool text) {
        if (height == 0) {
            bytes += data;
            return;
        }
        auto & top = layers[height - 1];
        if (top.kind == layer::text && !text && top.mode != 0)
            return translate(top, height, data);
        // These two make bytes of what is text.
        write(height - 1, data, text && top.kind != layer::buffered && top.kind != layer::text);
        top.count += data.size();
    }

    /// Only the lowest layer copies, past all others; a buffer goes on from where that leaves the one beneath.
    void copy(std::string_view data) {
        bytes += data;
        for (std::size_t i = 0; i < layers.size(); ++i)
            if (layers[i].kind == layer::buffered)
                layers[i].count = tell(i);
    }

    uint64 tell(std::size_t height) const {
        if (height == 0)
            return bytes.size();
        auto const & top = layers[height - 1];
        return top.kind == layer::counted || top.kind == layer::buffered ? top.count : tell(height - 1);
    }

private:
    void translate(model_layer & top, std::size_t height, std::string_view data) {
        for (char const byte : data) {
            bool const second = byte == '\n' && top.after_cr;
            top.after_cr = byte == '\r';
            if (second)
                continue;
            static constexpr std::string_view ends[] = {"", "\n", "\r", "\r\n"};
            std::string_view const single(&byte, 1);
            bool const ends_line = byte == '\r' || byte == '\n';
            auto const out = ends_line ? (top.mode > 0 && top.mode < 4 ? ends[top.mode] : "") : single;
            if (!out.empty())
                write(height - 1, out, false);
        }
    }
};

/// Targets of these sizes, then one without a limit.
class series : public stream::multi_output {
public:
    explicit series(narrow_string limits) : limits_(std::move(limits)), parts_(limits_.size() + 1) {}

    void next() override {
        if (at_ == parts_.size())
            return multi_output::next();
        target_ = std::make_unique<stream::vector_output>(parts_[at_]);
        under(*target_);
        limit(at_ < limits_.size() ? static_cast<unsigned char>(limits_[at_]) : all_ones);
        ++at_;
    }

    narrow_string joined() const {
        narrow_string all;
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            all.append(parts_[i].begin(), parts_[i].end());
            // Each is filled before the next one starts.
            if (i + 1 < at_)
                check(parts_[i].size() == static_cast<unsigned char>(limits_[i]));
        }
        return all;
    }

private:
    narrow_string limits_;
    std::vector<byte_vector> parts_;
    std::size_t at_ = 0;
    std::unique_ptr<stream::vector_output> target_;
};

class stack {
public:
    stack(bottom source, fuzz::feed & in) : source_(source), array_(new char[array_size]) {
        switch (source) {
        case bottom::vector: streams_.push_back(std::make_unique<stream::vector_output>(vector_)); break;
        case bottom::array:
            streams_.push_back(std::make_unique<stream::array_output>(array_.get(), uint32(array_size)));
            break;
        case bottom::series: streams_.push_back(std::make_unique<series>(in.text())); break;
        default: streams_.push_back(std::make_unique<support::recording_target>());
        }
    }
    ~stack() {
        while (!streams_.empty())
            streams_.pop_back();
    }

    void step(fuzz::feed & in) {
        switch (in.below(14)) {
        case 0:
        case 1:
        case 2: push(in); break;
        case 3: pop(); break;
        case 4:
        case 5:
            write(narrow_string(1, static_cast<char>(in.byte())), [&](auto const & s) { top().write(s[0]); });
            break;
        case 6:
        case 7:
        case 8: write(in.text(), [&](auto const & s) { top().write(s.data(), static_cast<uint32>(s.size())); }); break;
        case 9: write_text(in.text()); break;
        case 10: copy(in.text()); break;
        case 11: fill(in.byte(), static_cast<char>(in.byte())); break;
        case 12: number(in.number()); break;
        default: in.flag() ? top().flush() : top().flush_through();
        }
        check(top().tell() == model_.tell(height()));
        compare();
    }

    void finish() {
        while (height() > 0)
            pop();
        compare();
        check(model_.bytes == written());
    }

private:
    stream::output & top() { return *streams_.back(); }
    std::size_t height() const { return model_.layers.size(); }

    void push(fuzz::feed & in) {
        auto const kind = static_cast<layer>(in.below(static_cast<uint32>(layer::count)));
        bool const own = in.byte() % 4 != 0;
        unsigned const number = in.byte();
        if (height() == 8)
            return;
        model_layer added{kind};
        switch (kind) {
        case layer::filter: fuzz::put<stream::filter_output>(streams_, own); break;
        case layer::counted:
            added.count = number;
            fuzz::put<stream::counted_output>(streams_, own, added.count);
            break;
        case layer::buffered:
            added.count = model_.tell(height());
            fuzz::put<stream::buffered_output>(streams_, own, uint32(number));
            break;
        case layer::text:
            added.mode = int(number % 5);
            fuzz::put<stream::text_output>(streams_, own, added.mode);
            break;
        default: fuzz::put<stream::little_endian_output>(streams_, own); break;
        }
        model_.layers.push_back(added);
    }

    void pop() {
        if (height() == 0)
            return;
        streams_.pop_back();
        model_.layers.pop_back();
    }

    bool fits(std::size_t size) const {
        return source_ != bottom::array || model_.bytes.size() + 2 * size <= array_size;
    }

    template <class Write>
    void write(narrow_string const & data, Write write) {
        if (!fits(data.size()))
            return;
        write(data);
        model_.write(height(), data, false);
    }

    /// A series and a counting layer do not count text.
    bool counts_all() const {
        return source_ != bottom::series
               && std::none_of(model_.layers.begin(), model_.layers.end(),
                               [](auto const & each) { return each.kind == layer::counted; });
    }

    void write_text(narrow_string const & data) {
        if (!fits(data.size()) || !counts_all())
            return;
        top().write(data);
        model_.write(height(), data, true);
    }

    void copy(narrow_string const & data) {
        if (!fits(data.size()) || !counts_all() || data.empty())
            return;
        support::unlent source(data);
        top().copy_from(source);
        model_.copy(data);
    }

    void fill(unsigned count, char byte) {
        write(narrow_string(count, byte), [&](auto const &) { top().fill(count, byte); });
    }

    void number(uint32 value) {
        auto * const out = dynamic_cast<stream::endian_output *>(&top());
        if (out == nullptr)
            return;
        narrow_string bytes;
        for (int i = 0; i < 4; ++i)
            bytes += static_cast<char>(value >> 8 * i);
        write(bytes, [&](auto const &) { out->write32(value); });
    }

    narrow_string written() const {
        switch (source_) {
        case bottom::vector: return {vector_.begin(), vector_.end()};
        case bottom::array: return {array_.get(), std::size_t(streams_.front()->tell())};
        case bottom::series: return dynamic_cast<series &>(*streams_.front()).joined();
        default: return dynamic_cast<support::recording_target &>(*streams_.front()).data;
        }
    }

    /// What has arrived is the front of what was written; all of it, if no buffer holds anything.
    void compare() {
        auto const here = written();
        check(std::string_view(model_.bytes).starts_with(here));
        bool const buffered = std::any_of(model_.layers.begin(), model_.layers.end(),
                                          [](auto const & each) { return each.kind == layer::buffered; });
        if (!buffered)
            check(here.size() == model_.bytes.size());
    }

    bottom source_;
    byte_vector vector_;
    std::unique_ptr<char[]> array_;
    model model_;
    std::vector<std::unique_ptr<stream::output>> streams_;
};

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    auto const target = static_cast<bottom>(in.below(static_cast<uint32>(bottom::count)));
    stack streams(target, in);
    for (int steps = 0; steps < 200 && !in.empty(); ++steps)
        streams.step(in);
    streams.finish();
}
