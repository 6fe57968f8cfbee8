#pragma once

#include "socle/stream/filter_input.h"

namespace stream {

/// A filter that holds no bytes of its own: what is given back goes to the underlying stream, so that a stack of direct
/// layers has one store, at its bottom, and all positions agree.
class SOCLE_API direct_input : public filter_input {
public:
    direct_input() = default;
    /// Wraps `stream`, which has to outlive it.
    explicit direct_input(input & stream);
    template <derived_filter<direct_input> Stream>
    explicit direct_input(Stream & stream) : direct_input(static_cast<input &>(stream)) {}
    direct_input(direct_input const &) = default;
    direct_input & operator=(direct_input const &) = default;
    ~direct_input() override;

    /// Gives the bytes back to the underlying stream.
    void unread(char const * data, uint32 count) override;
    void unread(char byte) override;

protected:
    // What the underlying stream lends.
    std::span<char const> _lend() override;
    void _take(uint64 count) override;

private:
    bool _ours() const override;
};

} // namespace stream
