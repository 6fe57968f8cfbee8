/// A stack of sources, put together and used at random, beside a model: the bytes, a position, and for each layer what
/// it holds or counts.

#include "fuzz/support/feed.h"
#include "fuzz/support/stacked.h"
#include "socle/stream/array_input.h"
#include "socle/stream/buffered_input.h"
#include "socle/stream/counted_input.h"
#include "socle/stream/endian_input.h"
#include "socle/stream/limited_input.h"
#include "socle/stream/multi_input.h"
#include "socle/stream/random/input.h"
#include "socle/stream/safe_input.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

#include <bit>
#include <memory>
#include <optional>
#include <vector>

namespace {

using fuzz::check;
using fuzz::refusal;
using fuzz::refuses;

enum class bottom { vector, array, whole, drops, series, random, count };
enum class layer { filter, direct, counted, limited, safe, big, little, buffered, count };

// The model. Every layer is told in single steps, from the bottom, index 0, up.

struct model_layer {
    layer kind;
    narrow_string held = {};
    uint64 count = 0; // of a counted layer
    uint64 limit = 0, left = 0;
    bool given_back = false; // to a filter, which keeps what a buffer had read ahead
};

class model {
public:
    model(bottom source, narrow_string bytes) : source_(source), bytes_(std::move(bytes)), size_(bytes_.size()) {}

    std::vector<model_layer> layers;

    int one(std::size_t height) {
        auto const taken = block(height, 1);
        return taken.empty() ? -1 : static_cast<unsigned char>(taken[0]);
    }
    uint64 skip(std::size_t height, uint64 count) { return block(height, count, true).size(); }

    narrow_string block(std::size_t height, uint64 count, bool skipping = false) {
        if (height == 0) {
            auto const taken = bytes_.substr(at_, static_cast<std::size_t>(std::min<uint64>(count, SIZE_MAX)));
            at_ += taken.size();
            tell_ += taken.size();
            ended_ = ended_ || taken.size() < count;
            return taken;
        }
        auto & top = layers[height - 1];
        narrow_string taken = top.held.substr(0, static_cast<std::size_t>(std::min<uint64>(count, SIZE_MAX)));
        top.held.erase(0, taken.size());
        count -= taken.size();
        if (top.kind == layer::limited)
            count = std::min(count, top.left);
        if (count == 0)
            return taken;
        auto const beneath = block(height - 1, count, skipping);
        // What a reader asks for counts, and of what is skipped that which was there.
        if (top.kind == layer::limited)
            top.left -= skipping ? beneath.size() : count;
        if (beneath.size() < count && top.kind == layer::safe)
            throw refusal();
        top.count += beneath.size();
        return taken + beneath;
    }

    void unread(std::size_t height, narrow_string const & data) {
        if (height == 0) {
            if (source_ == bottom::random) {
                if (data.size() > at_)
                    throw refusal();
                at_ -= data.size();
                tell_ = at_;
                return;
            }
            if (source_ == bottom::series && ended_)
                throw refusal();
            bytes_.replace(0, at_, data);
            at_ = 0;
            tell_ -= source_ == bottom::series ? 0 : data.size();
            return;
        }
        auto & top = layers[height - 1];
        if (top.kind == layer::filter || top.kind == layer::buffered) {
            top.held.insert(0, data);
            return;
        }
        unread(height - 1, data);
        top.count -= data.size();
        top.left += std::min<uint64>(data.size(), all_ones - top.left);
    }

    uint64 tell(std::size_t height) const {
        if (height == 0)
            return tell_;
        auto const & top = layers[height - 1];
        return top.kind == layer::counted ? top.count : tell(height - 1) - top.held.size();
    }

    /// None if what a buffer has read ahead changes it.
    std::optional<uint64> size(std::size_t height, bool ahead = false) const {
        if (height == 0)
            return source_ == bottom::series ? all_ones : size_;
        auto const & top = layers[height - 1];
        if (top.kind == layer::limited)
            return top.limit;
        if (top.kind == layer::counted)
            return ahead ? std::nullopt : std::optional(top.count);
        return size(height - 1, ahead || top.given_back || top.kind == layer::buffered);
    }

    /// How many bytes are still to come.
    uint64 available(std::size_t height) const {
        model copy = *this;
        // A safe layer gives its last bytes only one by one.
        if (!has(layer::safe))
            return copy.block(height, bytes_.size() + 65536).size();
        uint64 count = 0;
        try {
            while (copy.one(height) != -1)
                ++count;
        } catch (refusal const &) {
        }
        return count;
    }

    bool exact() const { return source_ != bottom::drops; }
    bool has(layer kind) const {
        return std::any_of(layers.begin(), layers.end(), [&](auto const & each) { return each.kind == kind; });
    }
    /// What a buffer on top holds goes beneath.
    void give_back() {
        auto & held = layers.back().held;
        unread(layers.size() - 1, held);
        held.clear();
        for (auto each = layers.rbegin() + 1; each != layers.rend(); ++each) {
            each->given_back = each->kind == layer::filter;
            if (each->kind == layer::filter || each->kind == layer::buffered)
                break;
        }
    }
    /// Whether a buffer on top can give back all it holds, its bytes read ahead too.
    bool takes_back() const {
        return source_ != bottom::series && (source_ != bottom::random || layers.back().held.size() <= at_);
    }

private:
    bottom source_;
    narrow_string bytes_;
    std::size_t at_ = 0;
    uint64 tell_ = 0;
    uint64 size_;
    bool ended_ = false;
};

// The streams.

class series : public stream::multi_input {
public:
    explicit series(std::vector<byte_vector> const & parts) {
        for (auto const & part : parts)
            members_.push_back(std::make_unique<stream::vector_input>(part));
        under(*members_[0]);
    }

protected:
    void next() override {
        if (++at_ < members_.size())
            under(*members_[at_]);
        else
            multi_input::next();
    }

private:
    std::vector<std::unique_ptr<stream::vector_input>> members_;
    std::size_t at_ = 0;
};

class seekable : public stream::random::input {
public:
    explicit seekable(std::string_view data) : data_(data) {}

    bool seek(uint64 where) override {
        at_ = where;
        return true;
    }
    uint64 size() const override { return data_.size(); }

protected:
    int _read() override {
        return at_ < data_.size() ? static_cast<unsigned char>(data_[static_cast<std::size_t>(at_++)]) : -1;
    }
    uint64 _tell() const override { return at_; }

private:
    std::string_view data_;
    uint64 at_ = 0;
};

class stack {
public:
    stack(bottom source, narrow_string bytes, fuzz::feed & in)
        : bytes_(std::move(bytes)), vector_(fuzz::vector_of(bytes_)), model_(source, bytes_) {
        streams_.push_back(make_bottom(source, in));
    }
    ~stack() {
        while (!streams_.empty())
            streams_.pop_back();
    }

    void step(fuzz::feed & in) {
        switch (in.below(16)) {
        case 0:
        case 1:
        case 2: push(in); break;
        case 3: pop(); break;
        case 4:
        case 5: one(); break;
        case 6:
        case 7:
        case 8: block(in.byte() * (in.flag() ? 300u : 1u)); break;
        case 9: skip(in.byte() * (in.flag() ? 300u : 1u)); break;
        case 10:
        case 11: unread(in.text()); break;
        case 12: number(); break;
        case 13: yield(); break;
        case 14: mark(); break;
        default: in.flag() ? copy() : seek(in.number()); break;
        }
        uint64 const here = model_.tell(height());
        check(top().tell() == here);
        if (auto const size = model_.size(height()))
            check(top().size() == *size);
        if (marked_)
            check(top().drift() == here - *marked_);
    }

private:
    stream::input & top() { return *streams_.back(); }
    std::size_t height() const { return model_.layers.size(); }

    std::unique_ptr<stream::input> make_bottom(bottom source, fuzz::feed & in) {
        switch (source) {
        case bottom::vector: return std::make_unique<stream::vector_input>(vector_);
        case bottom::array:
            return std::make_unique<stream::array_input>(bytes_.data(), static_cast<uint32>(bytes_.size()));
        case bottom::whole: return std::make_unique<support::unlent>(bytes_);
        case bottom::drops: return std::make_unique<support::drops>(bytes_);
        case bottom::random: return std::make_unique<seekable>(bytes_);
        default: break;
        }
        for (std::string_view left = bytes_; !left.empty() || parts_.empty();) {
            std::size_t const size = parts_.size() < 20 ? in.byte() : left.size();
            parts_.push_back(fuzz::vector_of(left.substr(0, size)));
            left.remove_prefix(parts_.back().size());
        }
        return std::make_unique<series>(parts_);
    }

    void push(fuzz::feed & in) {
        auto const kind = static_cast<layer>(in.below(static_cast<uint32>(layer::count)));
        bool const own = in.byte() % 4 != 0;
        uint64 const number = in.byte();
        // These take a short read for the end; what reads ahead above a safe one runs into its end.
        constexpr auto host_order = std::endian::native == std::endian::big ? layer::big : layer::little;
        bool const whole_blocks = kind == layer::limited || kind == layer::safe || kind == host_order;
        if (height() == 8 || (whole_blocks && !model_.exact()) || (kind == layer::buffered && model_.has(layer::safe)))
            return;
        model_layer added{kind};
        switch (kind) {
        case layer::filter: fuzz::put<stream::filter_input>(streams_, own); break;
        case layer::direct: fuzz::put<stream::direct_input>(streams_, own); break;
        case layer::counted:
            added.count = number - 3;
            fuzz::put<stream::counted_input>(streams_, own, added.count);
            break;
        case layer::limited:
            // Beyond the end what is asked for counts, and a buffer above asks for more than its reader.
            added.limit = number == 255 ? all_ones : std::min(number, model_.available(height()));
            added.left = added.limit;
            fuzz::put<stream::limited_input>(streams_, own, added.limit);
            break;
        case layer::safe: fuzz::put<stream::safe_input>(streams_, own); break;
        case layer::big: fuzz::put<stream::big_endian_input>(streams_, own); break;
        case layer::little: fuzz::put<stream::little_endian_input>(streams_, own); break;
        default: fuzz::put<stream::buffered_input>(streams_, own, static_cast<uint32>(number)); break;
        }
        model_.layers.push_back(added);
        marked_.reset();
    }

    void pop() {
        if (height() == 0)
            return;
        if (model_.layers.back().given_back)
            return;
        if (model_.layers.back().kind == layer::buffered) {
            if (!model_.takes_back())
                return;
            model_.give_back();
        }
        streams_.pop_back();
        model_.layers.pop_back();
        marked_.reset();
    }

    /// Runs `act` on the streams and `expect` on the model; both refuse, or they give the same.
    template <class Act, class Expect>
    void same(Act act, Expect expect) {
        decltype(expect()) wanted{}, got{};
        bool const wanted_refused = refuses<refusal>([&] { wanted = expect(); });
        bool const refused = refuses<stream::exception>([&] { got = act(); });
        check(refused == wanted_refused && got == wanted);
    }

    void one() {
        same([&] { return top().read(); }, [&] { return model_.one(height()); });
    }

    void block(uint32 count) {
        // A buffer that ends where it says.
        std::unique_ptr<char[]> const buffer(new char[count]);
        auto const read = [&] { return narrow_string(buffer.get(), top().read(buffer.get(), count)); };
        if (model_.exact())
            return same(read, [&] { return model_.block(height(), count); });
        auto const got = read();
        check(got.size() <= count && (!got.empty() || count == 0 || model_.available(height()) == 0));
        check(got == model_.block(height(), got.size()));
    }

    void skip(uint32 count) {
        same([&] { return top().skip(count); }, [&] { return model_.skip(height(), count); });
    }

    void unread(narrow_string const & data) {
        auto const count = static_cast<uint32>(data.size());
        same([&] { return count == 1 ? top().unread(data[0]) : top().unread(data.data(), count), 0; },
             [&] { return model_.unread(height(), data), 0; });
    }

    /// Four bytes, if the top layer reads numbers.
    void number() {
        auto * const reader = dynamic_cast<stream::endian_input *>(&top());
        if (reader == nullptr)
            return;
        bool const big = model_.layers.back().kind == layer::big;
        same([&] { return reader->read32(); },
             [&] {
                 narrow_string bytes;
                 if (big == (std::endian::native == std::endian::big))
                     bytes = model_.block(height(), 4);
                 else
                     for (int i = 0; i < 4; ++i)
                         if (int const byte = model_.one(height()); byte != -1)
                             bytes += static_cast<char>(byte);
                 // A byte that is missing sets every bit from its place upward.
                 uint32 value = 0;
                 for (std::size_t i = 0; i < 4; ++i)
                     value |= (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0xFFFFFFFF)
                              << 8 * (big ? 3 - i : i);
                 return value;
             });
    }

    void yield() {
        auto * const buffer = dynamic_cast<stream::buffered_input *>(&top());
        if (buffer == nullptr || !model_.takes_back())
            return;
        buffer->yield();
        model_.give_back();
        check(streams_[height() - 1]->tell() == model_.tell(height() - 1));
    }

    void mark() {
        top().mark();
        marked_ = model_.tell(height());
    }

    void copy() {
        if (height() == 0)
            return; // what is in memory is copied without moving
        byte_vector target;
        stream::vector_output out(target);
        narrow_string wanted;
        same([&] { return top().copy_to(out); },
             [&] {
                 auto & held = model_.layers.back().held;
                 // What was given back goes first; a safe layer refuses what follows.
                 if (model_.layers.back().kind == layer::filter) {
                     wanted = held;
                     held.clear();
                 }
                 for (;;) {
                     auto const taken = model_.block(height(), 65536);
                     wanted += taken;
                     if (taken.empty())
                         return uint64(wanted.size());
                 }
             });
        check(target == fuzz::vector_of(wanted));
    }

    void seek(uint64 where) {
        // A limited layer asks beneath, where a random source would go.
        if (height() == 0 || model_.layers.back().kind == layer::limited)
            return;
        check(refuses<stream::exception>([&] { top().seek(where); }));
    }

    narrow_string bytes_;
    byte_vector vector_;
    std::vector<byte_vector> parts_;
    model model_;
    std::vector<std::unique_ptr<stream::input>> streams_;
    std::optional<uint64> marked_;
};

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    auto const source = static_cast<bottom>(in.below(static_cast<uint32>(bottom::count)));
    narrow_string const seed = in.text();
    // Sometimes more than the library moves in one block.
    narrow_string bytes = seed;
    for (uint32 times = in.byte() % 8 == 0 ? 300 : 0; times > 0 && !seed.empty(); --times)
        bytes += seed;
    stack streams(source, bytes, in);
    for (int steps = 0; steps < 200 && !in.empty(); ++steps)
        streams.step(in);
}
