#pragma once

#include "socle/platform/posix/streams/named_streams.h"

namespace platform::posix {

/// The streams of a volume whose host knows none: `<volume>/.socle_streams/<id>/<stored name>`, one folder a file.
/// See stream_owners.h for who owns a folder, stream_names.h for the names.
class own_streams final : public named_streams {
public:
    /// `volume` is absolute and free of links; empty for the host's root.
    explicit own_streams(narrow_string const & volume);

    uint32 locate(narrow_string const & file, wide_string const & name, bool create,
                  narrow_string & host) const override;
    uint32 list(narrow_string const & file, std::vector<wide_string> & names) const override;
    bool hidden(narrow_string const & host) const override;
    narrow_string belongings(narrow_string const & file) const override;

    narrow_string const & store() const { return store_; }

private:
    narrow_string store_;
};

} // namespace platform::posix
