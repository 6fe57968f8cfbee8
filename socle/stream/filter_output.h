#pragma once

#include "socle/stream/internal/derived_filter.h"
#include "socle/stream/output.h"

namespace stream {

/// A sink that wraps another and forwards to it. It never owns, closes or flushes the underlying stream on its own,
/// and that stream must outlive it.
///
/// `seek` throws, and `size()` is the position. Without an underlying stream the position is 0, closing and flushing do
/// nothing more, and everything else throws "there is no stream beneath".
///
/// The constructor of a filter wraps any stream but one declared as exactly the filter's own class, which it copies, as
/// it does a const one; `under(stream)` wraps any.
///
/// For a filter that changes bytes this is the wrong base: each operation that it does not override hands them on as
/// they are. One that overrides only `write(char)` passes blocks, texts and copies unfiltered. Derive it from
/// `stream::output`, where every operation is built on `write(char)` and `tell()`, keep a reference to the underlying
/// stream, and forward `flush_through` and `close` to it after `flush()`. A block form of `write` comes last, for
/// speed.
class SOCLE_API filter_output : public virtual output {
public:
    filter_output() = default;
    /// Wraps `stream`, which has to outlive it.
    explicit filter_output(output & stream);
    template <derived_filter<filter_output> Stream>
    explicit filter_output(Stream & stream) : filter_output(static_cast<output &>(stream)) {}
    /// The copy wraps the same underlying stream.
    filter_output(filter_output const &) = default;
    filter_output & operator=(filter_output const &) = default;
    ~filter_output() override;

    using output::write;

    /// @{
    /// Forwards to the underlying stream.
    void write(char const * data, uint32 count) override;
    uint64 tell() const override;
    void write(narrow_string const & text) override;
    void write(char byte) override;
    void copy_from(input & source) override;
    void resize(uint64 new_size) override;
    /// @}

    /// Calls `flush()`, then `flush_through()` of the underlying stream.
    void flush_through() override;
    /// Calls `flush()`, then `close()` of the underlying stream.
    void close() override;

    /// Wraps `stream` from now on.
    virtual void under(output & stream);
    /// The underlying stream.
    virtual output & under();

protected:
    /// The underlying stream, or null.
    output * underlying() const noexcept { return underlying_; }
    void underlying(output * stream) noexcept { underlying_ = stream; }
    /// The underlying stream, or "there is no stream beneath".
    output & beneath() const;

private:
    bool _ours() const override;
    bool _apart(std::span<char const> data) const override;

    output * underlying_ = nullptr;
};

} // namespace stream
