#include "socle/stream/filter_input.h"

#include "socle/nio/lending_internal.h"

#include <typeinfo>

namespace stream {

filter_input::filter_input(input & stream) : underlying_(&stream) {}

filter_input::~filter_input() = default;

uint64 filter_input::size() const { return underlying_ ? underlying_->size() : 0; }

void filter_input::close() {
    if (underlying_)
        underlying_->close();
}

void filter_input::under(input & stream) { underlying_ = &stream; }

input & filter_input::under() {
    if (!underlying_)
        throw exception("there is no stream beneath", "stream::filter_input");
    return *underlying_;
}

uint32 filter_input::_read(char * buffer, uint32 count) { return underlying_ ? underlying_->read(buffer, count) : 0; }

int filter_input::_read() { return underlying_ ? underlying_->read() : -1; }

uint64 filter_input::_skip(uint64 count) { return underlying_ ? underlying_->skip(count) : 0; }

uint64 filter_input::_tell() const { return underlying_ ? underlying_->tell() : 0; }

std::span<char const> filter_input::_lend_beneath() {
    return underlying_ ? nio::lending::bytes(*underlying_) : std::span<char const>();
}

void filter_input::_take_beneath(uint64 count) { nio::lending::take(*underlying_, count); }

bool filter_input::_ours() const { return typeid(*this) == typeid(filter_input); }

} // namespace stream
