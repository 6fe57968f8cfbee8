#pragma once

#include "socle/platform/posix/streams/named_streams.h"

namespace platform::posix {

/// The streams of a volume whose host knows none: `<volume>/.socle_streams/<id>/<stored name>`, one folder a file.
/// See docs/formats.md for who owns a folder, stream_names.h for the names.
class stored_streams final : public named_streams {
public:
    explicit stored_streams(held_place const & volume) : volume_(volume) {}

    system_code locate(host::at const & file, wide_string const & name, purpose wanted,
                       stream_place & place) const override;
    system_code list(host::at const & file, std::vector<wide_string> & names) const override;
    system_code hold(host::at const & file, descriptor_guard & held) const override;
    void moved(host::at const & file) const override;
    bool hides(std::string_view name, bool at_top) const override;
    system_code find_belongings(host::at const & file, belongings & found) const override;
    system_code sweep() const override;

private:
    held_place volume_;
};

} // namespace platform::posix
