#include "socle/io/open_fork.h"

namespace io {

open_fork::open_fork(io::fork & fork, fork::open_mode mode) : fork_(fork) {
    switch (mode) {
    case fork::open_read: fork_.open(); break;
    case fork::open_read_write: fork_.open_rw(); break;
    case fork::create_new:
    case fork::create_always: fork_.create(mode == fork::create_always); break;
    }
}

open_fork::~open_fork() {
    try {
        fork_.close(false);
    } catch (...) {
        // Only a caller's own fork throws here, and another failure may be on its way up.
    }
}

void open_fork::commit() {
    fork_.flush(true);
    fork_.close(true);
}

} // namespace io
