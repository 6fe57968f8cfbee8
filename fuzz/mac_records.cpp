/// The records of the Macintosh file system, and the header of a sidecar with Finder data.

#include "fuzz/support/feed.h"
#include "socle/io/exception.h"
#include "socle/io/info_header_internal.h"
#include "socle/io/mac/attributes.h"
#include "socle/stream/vector_input.h"
#include "socle/stream/vector_output.h"
#include "tests/support/memory_sources.h"

namespace {

using fuzz::check;

byte_vector stored(un::structure const & record) {
    byte_vector bytes;
    stream::vector_output out(bytes);
    check(record.write(out) == record.size() && bytes.size() == record.size());
    return bytes;
}

/// Reads the record, of which `least` bytes have to be there, from a source that lends and one that does not; what is
/// written of it is what was there, save the reserved bytes from `zeros` up to `zeros_end`.
template <class Record>
void record(std::string_view input, std::size_t zeros, std::size_t zeros_end, bool strict, std::size_t least = 0) {
    byte_vector const bytes = fuzz::vector_of(input);
    stream::vector_input memory(bytes);
    support::unlent plain(input);
    Record first, second;
    bool refused[2] = {};
    stream::input * const sources[] = {&memory, &plain};
    for (int i = 0; i < 2; ++i) {
        Record & read = i == 0 ? first : second;
        try {
            check(read.read(*sources[i], strict) == Record::fixed_size());
        } catch (io::exception const & e) {
            check(e.message() == "stream is too short");
            refused[i] = true;
        }
    }
    check(refused[0] == (input.size() < least) && refused[1] == refused[0] && memory.tell() == plain.tell());
    check(memory.tell() == std::min<std::size_t>(input.size(), refused[0] ? 8 : Record::fixed_size()));
    check(stored(first) == stored(second));
    if (input.size() < Record::fixed_size())
        return;
    byte_vector whole(bytes.begin(), bytes.begin() + Record::fixed_size());
    std::fill(whole.begin() + std::ptrdiff_t(zeros), whole.begin() + std::ptrdiff_t(zeros_end), 0);
    check(stored(first) == whole);
}

void code(std::string_view input) {
    narrow_string const text(input);
    io::mac::os_type type(text);
    narrow_string four = text.substr(0, 4);
    four.resize(4);
    check(type.to_string() == four);
    check(io::mac::os_type(type.value).to_string() == four);
}

void header(std::string_view input) {
    io::info_header first;
    first.read(input.data(), static_cast<uint32>(input.size()));
    auto const bytes = first.write();
    io::info_header again;
    again.read(bytes.data(), static_cast<uint32>(bytes.size()));
    check(stored(first.finder) == stored(again.finder));
    check(first.created == again.created && first.modified == again.modified);
    check(again.write() == bytes);
}

} // namespace

void fuzz::run(std::string_view input) {
    feed in(input);
    bool const strict = in.flag();
    auto const bytes = in.rest();
    record<io::mac::os_type>(bytes, 0, 0, strict, strict ? 4 : 0);
    record<io::mac::point>(bytes, 0, 0, strict);
    record<io::mac::rect>(bytes, 0, 0, strict);
    record<io::mac::file_info>(bytes, 14, 16, strict, 8);
    record<io::mac::folder_info>(bytes, 14, 16, strict);
    record<io::mac::extended_file_info>(bytes, 0, 8, strict);
    record<io::mac::extended_folder_info>(bytes, 4, 8, strict);
    code(bytes);
    if (bytes.size() >= io::info_header::least_size)
        header(bytes);
}
