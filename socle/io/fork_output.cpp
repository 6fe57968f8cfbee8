#include "socle/io/fork_output.h"

#include "socle/nio/in_blocks_internal.h"

namespace io {

fork_output::fork_output(io::fork & fork) : fork_(fork) {}
fork_output::fork_output(fork_output const &) = default;
fork_output::~fork_output() = default;

void fork_output::write(char const * data, uint32 count) { fork_.write(data, count); }

void fork_output::write(narrow_string const & text) {
    nio::in_blocks(text.data(), text.size(), [this](char const * data, uint32 count) { fork_.write(data, count); });
}

void fork_output::write(char byte) { fork_.write(&byte, 1); }

void fork_output::flush() {}

uint64 fork_output::tell() const { return fork_.tell(); }

bool fork_output::seek(uint64 where) {
    fork_.seek(where);
    return true;
}

uint64 fork_output::size() const { return fork_.size(); }

void fork_output::resize(uint64 size) { fork_.resize(size); }

void fork_output::close() { fork_.close(false); }

} // namespace io
