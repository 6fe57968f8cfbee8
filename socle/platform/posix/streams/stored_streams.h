#pragma once

#include "socle/platform/posix/streams/named_streams.h"

namespace platform::posix {

/// The streams of a volume whose host knows none: `<volume>/.socle_streams/<id>/<stored name>`, one folder a file.
/// See stream_owners.h for who owns a folder, stream_names.h for the names.
class stored_streams final : public named_streams {
public:
    /// `volume` is absolute and free of links; empty for the host's root.
    explicit stored_streams(narrow_string const & volume);

    system_code locate(host::at const & file, wide_string const & name, bool create,
                       narrow_string & host) const override;
    system_code list(host::at const & file, std::vector<wide_string> & names) const override;
    bool hides(std::string_view name, bool at_top) const override;
    narrow_string belongings(host::at const & file) const override;

    narrow_string const & store() const { return store_; }

private:
    narrow_string store_;
};

} // namespace platform::posix
