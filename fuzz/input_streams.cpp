/// Chains of sources, put together and used at random.

#include "fuzz/support/plain_sources.h"
#include "socle/stream/array_output.h"
#include "socle/stream/infinite_output.h"
#include "socle/stream/integers.h"
#include "socle/stream/vector_output.h"

namespace {

using namespace fuzz;

narrow_string text_of(auto const & bytes) { return {bytes.begin(), bytes.end()}; }

account * noted = nullptr;

/// A caller's class that overrides how bytes are read, and notes each call.
template <class Stream>
class noting : public Stream {
public:
    using Stream::Stream;

protected:
    uint32 _read(char * buffer, uint32 count) override {
        return noted->tell("  _read", count), Stream::_read(buffer, count);
    }
    int _read() override { return noted->tell("  _read"), Stream::_read(); }
    uint64 _skip(uint64 count) override { return noted->tell("  _skip", count), Stream::_skip(count); }
};
template <class Stream>
using noting_plain = noting<plain<Stream>>;
using of_noting = kind<noting, std::type_identity_t>;
using of_noting_plain = kind<noting_plain, plain>;

/// The members of a series, each one read as it comes.
template <class Multi, class Source>
class series : public Multi {
public:
    series(std::string_view data, std::string_view sizes, manners m, account & to) : account_(to) {
        for (char const size : sizes) {
            auto const piece = data.substr(0, static_cast<unsigned char>(size));
            members_.push_back(std::make_unique<Source>(piece, m, to));
            data.remove_prefix(piece.size());
        }
        members_.push_back(std::make_unique<Source>(data, m, to));
        this->under(*members_[0]);
    }

protected:
    void next() override {
        account_.tell("  next");
        if (++at_ < members_.size())
            this->under(*members_[at_]);
        else
            Multi::next();
    }

private:
    account & account_;
    std::vector<std::unique_ptr<Source>> members_;
    std::size_t at_ = 0;
};

template <class Kind>
class sources {
public:
    explicit sources(feed in) {
        noted = &told;
        narrow_string const seed = in.text();
        // Sometimes more than the library moves in one block.
        for (int times = in.byte() % 32 == 0 ? 300 : 1; times > 0; --times)
            bytes_ += seed;
        put_bottom(in);
        for (int steps = 0; steps < 200 && !in.empty(); ++steps)
            step(in);
    }

    account told;

private:
    template <class Stream>
    using type = typename Kind::template type<Stream>;

    using source = told_source<typename Kind::template used<stream::input>>;

    void put_bottom(feed & in) {
        auto const kind = in.below(6);
        uint32 const start = in.byte() % 16;
        auto const m = manners_of(in);
        auto const size = static_cast<uint32>(bytes_.size());
        vector_ = vector_of(bytes_);
        switch (kind) {
        case 0: chain_.template put<stream::vector_input>(vector_, start); break;
        case 1: chain_.template put<stream::array_input>(bytes_.data(), size, start); break;
        case 2:
            chain_.put_bottom(std::make_unique<series<type<stream::multi_input>, source>>(
                bytes_, some_bytes(in).substr(0, 9), m, told));
            break;
        case 3:
            chain_.put_bottom(
                std::make_unique<told_source<typename Kind::template used<stream::random::input>>>(bytes_, m, told));
            break;
        default: chain_.put_bottom(std::make_unique<source>(bytes_, m, told));
        }
    }

    stream::input & top() { return chain_.top(); }

    void step(feed & in) {
        auto const what = in.below(20);
        uint32 const count = in.byte() * (in.flag() ? 300u : 1u);
        told.tell("step", what);
        switch (what) {
        case 0:
        case 1:
        case 2: push(in); break;
        case 3:
            if (chain_.height() > 1)
                chain_.pop();
            break;
        case 4:
        case 5: told.result([&] { return static_cast<uint64>(top().read()); }); break;
        case 6:
        case 7:
        case 8: read(count); break;
        case 9: told.result([&] { return top().skip(count < 60'000 ? count : in.long_number()); }); break;
        case 10:
        case 11: unread(some_bytes(in)); break;
        case 12: number(in.below(8)); break;
        case 13:
        case 14: line(in.below(4), count); break;
        case 15:
            if (auto * const buffer = chain_.template top_as<stream::buffered_input>())
                told.result([&] { return buffer->yield(), 0; });
            break;
        case 16: top().mark(); break;
        case 17: copy(in); break;
        case 18: told.result([&] { return top().seek(count); }); break;
        default: in.below(4) == 0 ? replace() : told.result([&] { return top().close(), 0; });
        }
        told.result([&] { return std::to_string(top().tell()) + ' ' + std::to_string(top().drift()); });
        told.result([&] { return top().size(); });
        if (auto * const counted = chain_.template top_as<stream::counted_input>())
            told.tell("count", counted->count());
        if (auto * const limited = chain_.template top_as<stream::limited_input>())
            told.tell("limit", limited->limit(), limited->consumed());
    }

    void push(feed & in) {
        auto const kind = in.below(9);
        uint32 const number = in.byte();
        if (chain_.height() > 4)
            return;
        told.tell("push", kind);
        switch (kind) {
        case 0: return chain_.template put_on_top<stream::filter_input>();
        case 1: return chain_.template put_on_top<stream::direct_input>();
        case 2: return chain_.template put_on_top<stream::counted_input>(number - uint64(3));
        case 3: return chain_.template put_on_top<stream::limited_input>(number > 250 ? all_ones : uint64(number));
        case 4: return chain_.template put_on_top<stream::safe_input>();
        case 5: return chain_.template put_on_top<stream::big_endian_input>();
        case 6: return chain_.template put_on_top<stream::little_endian_input>();
        case 7: return chain_.template put_on_top<stream::line_input>();
        default: return chain_.template put_on_top<stream::buffered_input>(number > 250 ? number * 300 : number % 50);
        }
    }

    void read(uint32 count) {
        // A buffer that ends where it says.
        std::unique_ptr<char[]> const buffer(new char[count]);
        told.result([&] { return narrow_string(buffer.get(), top().read(buffer.get(), count)); });
    }

    void unread(narrow_string const & data) {
        told.result([&] {
            data.size() == 1 ? top().unread(data[0]) : top().unread(data.data(), static_cast<uint32>(data.size()));
            return 0;
        });
    }

    void number(uint32 width) {
        auto const read = [&](auto & in) {
            auto const run = [&](auto value) {
                std::vector<decltype(value)> values(11);
                told.result([&] { return read_integers(in, std::span(values)), 0; });
                narrow_string all;
                for (auto const each : values)
                    all += std::to_string(each) + ' ';
                return all;
            };
            switch (width) {
            case 0: return std::to_string(in.read8());
            case 1: return std::to_string(in.read16());
            case 2: return std::to_string(in.read24());
            case 3: return std::to_string(in.read32());
            case 4: return std::to_string(in.read64());
            case 5: return run(uint16());
            case 6: return run(uint32());
            default: return run(uint64());
            }
        };
        if (auto * const big = chain_.template top_as<stream::big_endian_input>())
            told.result([&] { return read(*big); });
        if (auto * const little = chain_.template top_as<stream::little_endian_input>())
            told.result([&] { return read(*little); });
    }

    void line(uint32 form, uint32 size) {
        auto * const in = chain_.template top_as<stream::line_input>();
        if (in == nullptr)
            return;
        told.result([&]() -> narrow_string {
            narrow_string text = "used";
            byte_vector bytes(3);
            std::vector<char> room(size % 40);
            switch (form) {
            case 0: return std::to_string(in->read_line(room.data(), uint32(room.size()))) + ' ' + text_of(room);
            case 1: return std::to_string(in->read_line(bytes)) + ' ' + text_of(bytes);
            case 2: return std::to_string(in->read_line(text)) + ' ' + text;
            default: return in->read_line();
            }
        });
    }

    void copy(feed & in) {
        auto const target = in.below(5), way = in.below(3), size = in.below(40), failing = in.below(9);
        uint64 const count = in.below(60);
        byte_vector vector;
        char array[300] = {};
        std::unique_ptr<stream::output> sink;
        if (target == 0)
            sink = std::make_unique<stream::vector_output>(vector);
        else if (target == 1)
            sink = std::make_unique<stream::array_output>(array, uint32(sizeof array));
        else if (target == 2)
            sink = std::make_unique<stream::infinite_output>();
        else
            sink = std::make_unique<told_sink>(failing, told);
        typename Kind::template used<stream::copier> copier(size);
        told.result([&]() -> uint64 {
            switch (way) {
            case 0: return top().copy_to(*sink);
            case 1: return copier.process(top(), *sink);
            default: return copier.process(top(), *sink, count);
            }
        });
        told.tell("copied", text_of(vector), narrow_string(array, sizeof array), sink->tell());
    }

    void replace() {
        auto * const filter = chain_.template top_as<stream::filter_input>();
        if (filter == nullptr || chain_.height() == 1)
            return;
        filter->under(other_);
        told.tell("replaced", &filter->under() == &other_);
    }

    narrow_string bytes_;
    byte_vector vector_;
    source other_{"another stream, with some bytes", {}, told};
    chain<Kind, stream::input> chain_;
};

} // namespace

void fuzz::run(std::string_view input) {
    auto const library = sources<of_library>(feed(input)).told.text;
    check_same(library, sources<of_callers>(feed(input)).told.text, "library and derived");
    check_same(library, sources<of_plain>(feed(input)).told.text, "library and plain");
    check_same(sources<of_noting>(feed(input)).told.text, sources<of_noting_plain>(feed(input)).told.text,
               "overridden library and plain");
}
