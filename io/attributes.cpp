#include "io/attributes.h"

namespace io {

attributes::attributes() = default;
attributes::attributes(attributes const &) = default;
attributes & attributes::operator=(attributes const &) = default;
attributes::~attributes() = default;

} // namespace io
