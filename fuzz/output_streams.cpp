/// Chains of sinks, put together and used at random.

#include "fuzz/support/plain_sinks.h"
#include "socle/stream/array_input.h"
#include "socle/stream/integers.h"

#include <deque>
#include <utility>

namespace {

using namespace fuzz;

/// Targets of these sizes, which tell what they get. One may be refused after it was put beneath.
template <class Multi>
class series : public Multi {
public:
    series(narrow_string limits, unsigned failing, account & to)
        : limits_(std::move(limits)), failing_(failing % 32), refused_(failing / 32), account_(to) {}

    void next() override {
        account_.tell("  next");
        if (targets_.size() == limits_.size())
            return Multi::next();
        this->limit(static_cast<unsigned char>(limits_[targets_.size()]) % 40u);
        this->under(targets_.emplace_back(std::exchange(failing_, 0u), account_));
        if (targets_.size() == refused_)
            throw support::failure();
    }

private:
    narrow_string limits_;
    unsigned failing_, refused_;
    account & account_;
    std::deque<told_sink> targets_;
};

template <class Kind>
class sinks {
public:
    explicit sinks(feed in) {
        put_bottom(in);
        for (int steps = 0; steps < 200 && !in.empty(); ++steps)
            step(in);
        while (chain_.height() > 1)
            chain_.pop();
        tell_place();
        told.tell("memory", narrow_string(array_, sizeof array_), narrow_string(vector_.begin(), vector_.end()));
    }

    account told;

private:
    template <class Stream>
    using type = typename Kind::template type<Stream>;

    void put_bottom(feed & in) {
        auto const kind = in.below(8);
        uint32 const start = in.byte() % 16, failing = in.byte();
        vector_ = vector_of("bytes before");
        switch (kind) {
        case 0:
        case 1: chain_.template put<stream::vector_output>(vector_, start); break;
        case 2:
        case 3:
            chain_.template put<stream::array_output>(array_, std::min(uint32(in.byte()), uint32(sizeof array_)),
                                                      start);
            break;
        case 4: chain_.template put<stream::infinite_output>(); break;
        case 5:
            chain_.put_bottom(std::make_unique<series<type<stream::multi_output>>>(some_bytes(in), failing, told));
            break;
        default: chain_.put_bottom(std::make_unique<told_sink>(failing, told));
        }
    }

    stream::output & top() { return chain_.top(); }

    void step(feed & in) {
        auto const what = in.below(19);
        told.tell("step", what);
        auto const call = [&](auto act) { told.result([&] { return act(), 0; }); };
        switch (what) {
        case 0:
        case 1:
        case 2: push(in); break;
        case 3:
            if (chain_.height() > 1)
                chain_.pop();
            break;
        case 4:
        case 5:
        case 6: call([&, byte = static_cast<char>(in.byte())] { top().write(byte); }); break;
        case 7:
        case 8:
        case 9: call([&, s = some_bytes(in)] { top().write(s.data(), static_cast<uint32>(s.size())); }); break;
        case 10: call([&, text = some_bytes(in)] { top().write(text); }); break;
        case 11: copy(in); break;
        case 12: call([&, count = in.byte(), byte = in.byte()] { top().fill(count, static_cast<char>(byte)); }); break;
        case 13: number(in); break;
        case 14: call([&, size = top().tell() + in.byte() - 64] { top().resize(std::min<uint64>(size, 5000)); }); break;
        case 15: call([&, way = in.below(2)] { way == 0 ? top().flush() : top().flush_through(); }); break;
        case 16: call([&, way = in.below(2)] { way == 0 ? top().end() : top().close(); }); break;
        case 17:
            if (auto * const text = chain_.template top_as<stream::text_output>())
                call([&, way = in.below(2)] { way == 0 ? text->reset() : text->eol(); });
            else if (auto * const all = chain_.template top_as<stream::multi_output>())
                call([&] { all->next(); });
            break;
        default: in.below(4) == 0 ? replace() : top().mark();
        }
        tell_place();
    }

    void tell_place() {
        told.tell("at", top().tell(), top().size(), top().drift());
        if (auto * const counted = chain_.template top_as<stream::counted_output>())
            told.tell("count", counted->count());
        if (auto * const all = chain_.template top_as<stream::multi_output>())
            told.tell("limit", all->limit(), all->written());
    }

    void push(feed & in) {
        auto const kind = in.below(6);
        unsigned const number = in.byte();
        if (chain_.height() > 4)
            return;
        told.tell("push", kind);
        switch (kind) {
        case 0: return chain_.template put_on_top<stream::filter_output>();
        case 1: return chain_.template put_on_top<stream::counted_output>(uint64(number));
        case 2: return chain_.template put_on_top<stream::text_output>(int(number % 5));
        case 3: return chain_.template put_on_top<stream::big_endian_output>();
        case 4: return chain_.template put_on_top<stream::little_endian_output>();
        default: return chain_.template put_on_top<stream::buffered_output>(number % 32);
        }
    }

    void copy(feed & in) {
        bool const lent = in.flag();
        auto const m = manners_of(in);
        narrow_string const data = some_bytes(in);
        auto const copy = [&](stream::input & source) {
            told.result([&] { return source.skip(data.size() / 4); });
            told.result([&] { return top().copy_from(source), source.tell(); });
        };
        stream::array_input memory(data);
        told_source<stream::input> source(data, m, told);
        lent ? copy(memory) : copy(source);
    }

    void number(feed & in) {
        auto const width = in.below(8);
        uint64 const value = in.long_number();
        auto const write = [&](auto & out) -> int {
            auto const run = [&](auto seed) {
                using number = decltype(seed);
                std::vector<number> values(11);
                for (auto & each : values)
                    each = seed = static_cast<number>(seed * 77 + 5);
                return write_integers(out, std::span<number const>(values)), 0;
            };
            switch (width) {
            case 0: return out.write8(static_cast<unsigned char>(value)), 0;
            case 1: return out.write16(static_cast<uint16>(value)), 0;
            case 2: return out.write24(static_cast<uint32>(value)), 0;
            case 3: return out.write32(static_cast<uint32>(value)), 0;
            case 4: return out.write64(value), 0;
            case 5: return run(static_cast<uint16>(value));
            case 6: return run(static_cast<uint32>(value));
            default: return run(value);
            }
        };
        if (auto * const big = chain_.template top_as<stream::big_endian_output>())
            told.result([&] { return write(*big); });
        if (auto * const little = chain_.template top_as<stream::little_endian_output>())
            told.result([&] { return write(*little); });
    }

    void replace() {
        auto * const filter = chain_.template top_as<stream::filter_output>();
        if (filter == nullptr || chain_.height() == 1)
            return;
        filter->under(other_);
        told.tell("replaced", &filter->under() == &other_);
    }

    byte_vector vector_;
    char array_[150] = {};
    told_sink other_{0, told};
    chain<Kind, stream::output> chain_;
};

} // namespace

void fuzz::run(std::string_view input) {
    auto const library = sinks<of_library>(feed(input)).told.text;
    check_same(library, sinks<of_callers>(feed(input)).told.text, "library and derived");
    check_same(library, sinks<of_plain>(feed(input)).told.text, "library and plain");
}
