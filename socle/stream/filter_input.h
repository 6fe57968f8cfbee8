#pragma once

#include "socle/stream/input.h"
#include "socle/stream/internal/derived_filter.h"

namespace stream {

/// A source that wraps another and forwards to it. It never owns, closes or moves the underlying stream on its own,
/// and that stream must outlive it.
///
/// Bytes given back stay in the filter: the underlying stream knows nothing of them. `seek` throws, whatever the
/// underlying stream could do. Without an underlying stream it reads as ended, at position 0.
///
/// The constructor of a filter wraps any stream but one declared as exactly the filter's own class, which it copies, as
/// it does a const one; `under(stream)` wraps any.
///
/// For a filter that changes bytes this is the wrong base: each hook that it does not override hands them on as they
/// are. One that overrides only `_read()` passes blocks and skips bytes unfiltered. Derive it from `stream::input`,
/// where every operation is built on `_read()` and `_tell()`, and keep a reference to the underlying stream. A block
/// form of `_read` comes last, for speed: a byte through single calls costs some 50 times as much.
class SOCLE_API filter_input : public virtual input {
public:
    filter_input() = default;
    /// Wraps `stream`, which has to outlive it.
    explicit filter_input(input & stream);
    template <derived_filter<filter_input> Stream>
    explicit filter_input(Stream & stream) : filter_input(static_cast<input &>(stream)) {}
    /// The copy wraps the same underlying stream.
    filter_input(filter_input const &) = default;
    filter_input & operator=(filter_input const &) = default;
    ~filter_input() override;

    /// The size of the underlying stream.
    uint64 size() const override;
    /// Closes the underlying stream.
    void close() override;

    /// Wraps `stream` from now on.
    virtual void under(input & stream);
    /// The underlying stream. Throws "there is no stream beneath" if there is none.
    virtual input & under();

protected:
    /// @{
    /// Forwards to the underlying stream.
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    uint64 _tell() const override;
    /// @}

    /// The underlying stream, or null.
    input * underlying() const noexcept { return underlying_; }
    void underlying(input * stream) noexcept { underlying_ = stream; }

    // What the underlying stream lends, for a class that hands its bytes on as they are.
    std::span<char const> _lend_beneath();
    void _take_beneath(uint64 count);

private:
    bool _ours() const override;

    input * underlying_ = nullptr;
};

} // namespace stream
