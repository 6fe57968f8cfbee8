#pragma once

#include "socle/platform/posix/streams/named_streams.h"

namespace platform::posix {

/// The streams of a mounted NTFS disk whose driver gives stream `name` of a file `f` as `f:name`.
class disk_streams final : public named_streams {
public:
    explicit disk_streams(held_place const & volume) : volume_(volume.path) {}

    /// Whether the disk at `volume` is of this kind.
    static bool found_at(held_place const & volume);

    system_code locate(host::at const & file, wide_string const & name, purpose wanted,
                       stream_place & place) const override;
    system_code list(host::at const & file, std::vector<wide_string> & names) const override;
    system_code hold(host::at const &, descriptor_guard &) const override { return {}; }
    void moved(host::at const &) const override {}
    bool hides(std::string_view name, bool at_top) const override;
    system_code find_belongings(host::at const &, belongings &) const override { return {}; }
    system_code sweep() const override { return {}; }

private:
    narrow_string volume_; // absolute and free of links; empty for the host's root
};

} // namespace platform::posix
