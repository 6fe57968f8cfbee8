#include "socle/io/file.h"

namespace io {

file::file() : data_(*this), info_(*this), rsrc_(*this) {}
file::file(any::path const & path) : item(path), data_(*this), info_(*this), rsrc_(*this) {}
file::file(file const & other) : item(other), data_(*this), info_(*this), rsrc_(*this) {}
file::file(item const & other) : item(other), data_(*this), info_(*this), rsrc_(*this) {}
file::~file() = default;

file & file::operator=(file const & other) {
    item::operator=(other);
    return *this;
}

bool file::create(bool overwrite) { return data_.create(overwrite); }

void file::unlink(bool) { data_.unlink(false); }

bool file::exists() { return data_.exists() || info_.exists() || rsrc_.exists(); }

} // namespace io
