#include "socle/io/fork_input.h"

namespace io {

fork_input::fork_input(io::fork & fork) : fork_(fork) {}
fork_input::fork_input(fork_input const &) = default;
fork_input::~fork_input() = default;

bool fork_input::seek(uint64 where) {
    fork_.seek(where);
    return true;
}

uint64 fork_input::size() const { return fork_.size(); }

void fork_input::close() { fork_.close(false); }

uint32 fork_input::_read(char * buffer, uint32 count) {
    return buffer == nullptr || count == 0 ? 0 : fork_.read(buffer, count);
}

int fork_input::_read() {
    char byte = 0;
    return fork_.read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

uint64 fork_input::_tell() const { return fork_.tell(); }

} // namespace io
