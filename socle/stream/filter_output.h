#pragma once

#include "socle/stream/output.h"

namespace stream {

/// A sink that stands on another and forwards to it. It never owns, closes or flushes the stream beneath on its own,
/// and that stream must outlive it.
///
/// `seek` throws, and `size()` is the position. Without a stream beneath the position is 0, closing and flushing end
/// here, and everything else throws "there is no stream beneath".
class SOCLE_API filter_output : public virtual output {
public:
    filter_output() = default;
    /// Stands on `stream`, which has to outlive it.
    explicit filter_output(output & stream);
    /// The copy stands on the same stream beneath. To stand on another filter of the same class, use `under()`.
    filter_output(filter_output const &) = default;
    filter_output & operator=(filter_output const &) = default;
    ~filter_output() override;

    using output::write;

    void write(char const * data, uint32 count) override;
    uint64 tell() const override;
    void write(narrow_string const & text) override;
    void write(char byte) override;
    void copy_from(input & source) override;
    void resize(uint64 new_size) override;

    /// Calls `flush()`, then `flush_through()` of the stream beneath.
    void flush_through() override;
    /// Calls `flush()`, then `close()` of the stream beneath.
    void close() override;

    /// Puts this filter on `stream`.
    virtual void under(output & stream);
    /// The stream beneath.
    virtual output & under();

protected:
    /// The stream beneath, or null.
    output * underlying() const noexcept { return underlying_; }
    void underlying(output * stream) noexcept { underlying_ = stream; }
    /// The stream beneath, or "there is no stream beneath".
    output & beneath() const;

private:
    bool _ours() const override;
    bool _apart(std::span<char const> data) const override;

    output * underlying_ = nullptr;
};

} // namespace stream
