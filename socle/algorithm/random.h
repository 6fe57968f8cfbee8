#pragma once

#include "socle/basic/types.h"

/// Random numbers for uses that may be predictable.
namespace algorithm::random {

/// Where raw random bits come from.
template <class word_type>
class random_source {
public:
    virtual ~random_source() = default;
    /// `count` random bits, the lowest of the result; 1 to 32.
    virtual uint32 bits(uint32 count) = 0;
    virtual word_type word() = 0;
};

/// Takes the machine's counter for random. Throws what `un::timer::absolute` throws.
class timer_source : public random_source<unsigned int> {
public:
    uint32 bits(uint32 count) override;
    uint32 word() override;
};

/// Draws numbers from a state that each draw changes.
template <class word_type, class state_type>
class generator {
public:
    explicit generator(state_type state) : state_(state) {}
    virtual ~generator() = default;

    virtual void seed(state_type seed) { state_ = seed; }
    /// The next `count` bits, the lowest of the result; 1 to 32.
    virtual word_type next(uint32 count) = 0;
    virtual word_type next_word() = 0;
    virtual void fill(unsigned char * bytes, uint32 count) = 0;

    state_type state() const noexcept { return state_; }

protected:
    void state(state_type value) noexcept { state_ = value; }

private:
    state_type state_;
};

/// The 48-bit linear congruential generator of the Java platform's standard random class: seeded by `seed`, it draws
/// the same words and bytes.
class java_generator : public generator<unsigned int, uint64> {
public:
    /// From a word of a `timer_source`, which becomes the state as it comes.
    java_generator();
    /// `state` is taken unchanged, not scrambled as by `seed`.
    explicit java_generator(uint64 state);

    void seed(uint64 seed) override;
    uint32 next(uint32 count) override;
    uint32 next_word() override;
    /// Each word gives four bytes, the lowest first; what is left of the last one is dropped.
    void fill(unsigned char * bytes, uint32 count) override;
};

} // namespace algorithm::random
