#pragma once

#include "socle/stream/input.h"

namespace stream {

/// A source that stands on another and forwards to it. It never owns, closes or moves the stream beneath on its own,
/// and that stream must outlive it.
///
/// Bytes given back stay here: the stream beneath knows nothing of them. `seek` throws, whatever the stream beneath
/// could do. Without a stream beneath it reads as ended, at position 0.
class SOCLE_API filter_input : public virtual input {
public:
    filter_input() = default;
    /// Stands on `stream`, which has to outlive it.
    explicit filter_input(input & stream);
    /// The copy stands on the same stream beneath. To stand on another filter of the same class, use `under()`.
    filter_input(filter_input const &) = default;
    filter_input & operator=(filter_input const &) = default;
    ~filter_input() override;

    /// The size of the stream beneath.
    uint64 size() const override;
    /// Closes the stream beneath.
    void close() override;

    /// Puts this filter on `stream`.
    virtual void under(input & stream);
    /// The stream beneath. Throws "there is no stream beneath" if there is none.
    virtual input & under();

protected:
    uint32 _read(char * buffer, uint32 count) override;
    int _read() override;
    uint64 _skip(uint64 count) override;
    uint64 _tell() const override;

    /// The stream beneath, or null.
    input * underlying() const noexcept { return underlying_; }
    void underlying(input * stream) noexcept { underlying_ = stream; }

    // What the stream beneath lends, for a class that hands its bytes on as they are.
    std::span<char const> _lend_beneath();
    void _take_beneath(uint64 count);

private:
    bool _ours() const override;

    input * underlying_ = nullptr;
};

} // namespace stream
