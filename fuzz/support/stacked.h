#pragma once

#include <memory>
#include <vector>

namespace fuzz {

/// A caller's class, which the library may not take a short way around.
template <class Stream>
class callers : public Stream {
public:
    using Stream::Stream;
};

/// Puts a stream on the topmost one: the library's own, or a caller's.
template <class Stream, class Base, class... Arguments>
void put(std::vector<std::unique_ptr<Base>> & streams, bool own, Arguments... arguments) {
    auto & beneath = *streams.back();
    if (own)
        streams.push_back(std::make_unique<Stream>(beneath, arguments...));
    else
        streams.push_back(std::make_unique<callers<Stream>>(beneath, arguments...));
}

} // namespace fuzz
