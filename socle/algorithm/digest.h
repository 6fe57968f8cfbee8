#pragma once

#include "socle/basic/export.h"
#include "socle/basic/types.h"

#include <utility>

/// Checksums, such as a MacBinary header has.
namespace algorithm {

/// A running digest: bytes go in, `finish` puts the digest into `result`.
class SOCLE_API digest {
public:
    digest() = default;
    digest(digest const &) = default;
    digest & operator=(digest const &) = default;
    virtual ~digest();

    /// Does nothing; room for classes that need more than a start state.
    virtual void hook(uint32 first, uint32 second);
    /// Back to the start state. Does nothing by default.
    virtual void reset();
    /// Takes in `count` bytes.
    virtual void update(unsigned char const * bytes, uint32 count) = 0;
    /// Takes in one byte.
    virtual void update(unsigned char byte) = 0;
    /// Completes the digest. Does nothing by default.
    virtual void finish();

    /// The running state, which each class defines.
    uint32 state() const noexcept { return state_; }
    /// The finished digest, empty before the first `finish`.
    byte_vector const & result() const noexcept { return result_; }

protected:
    /// Sets what the accessor of the same name returns.
    void state(uint32 value) noexcept { state_ = value; }
    /// Sets what the accessor of the same name returns.
    void result(byte_vector value) noexcept { result_ = std::move(value); }

private:
    uint32 state_ = 0;
    byte_vector result_;
};

} // namespace algorithm
