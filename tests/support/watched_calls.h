#pragma once

#include "socle/platform/posix/host/host_calls.h"

#include <functional>
#include <string>
#include <utility>

/// Does something at each call to the host while this lives, and returns the call's error, 0 for none.
class watched_calls {
public:
    explicit watched_calls(std::function<int(std::string const & call)> then) {
        at_call_ = std::move(then);
        platform::posix::host::fault = [](char const * call) { return at_call_(call); };
    }
    /// Lets these calls fail, whose names have blanks between.
    watched_calls(std::string const & calls, int error)
        : watched_calls([all = ' ' + calls + ' ', error](std::string const & call) {
              return all.find(' ' + call + ' ') != all.npos ? error : 0;
          }) {}
    watched_calls(watched_calls const &) = delete;
    watched_calls & operator=(watched_calls const &) = delete;
    ~watched_calls() { platform::posix::host::fault = nullptr; }

private:
    inline static std::function<int(std::string const &)> at_call_;
};
