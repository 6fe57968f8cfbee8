#include "chain.h"

#include <socle/command/line.h>
#include <socle/command/option.h>
#include <socle/io/describe.h>
#include <socle/io/file.h>
#include <socle/io/fork_input.h>
#include <socle/io/fork_output.h>
#include <socle/io/open_fork.h>
#include <socle/platform/host.h>
#include <socle/stream/buffered_input.h>
#include <socle/stream/buffered_output.h>

#include <iostream>

namespace {

constexpr uint32 block = 65536;

struct settings {
    narrow_string folder;
    bool resource;
};

/// Makes the fork, which must not exist, of the bytes. If anything fails, it goes again.
void fill(io::fork & target, stream::input & bytes) {
    io::open_fork made(target, io::fork::create_new);
    try {
        io::fork_output out(*made);
        stream::buffered_output buffer(out, block);
        bytes.copy_to(buffer);
        buffer.flush();
        made.commit();
    } catch (...) {
        made->unlink(false);
        throw;
    }
}

/// `names`: the source, the target, and the filters from the bottom up.
void convert(std::vector<narrow_string> const & names, settings const & chosen) {
    io::file source(any::path::from_host(names[0]));
    io::file target(any::path::from_host(names[1]));
    io::open_fork const opened(source.data_fork());
    io::fork_input file(*opened);
    stream::buffered_input buffer(file, block);
    chain filters(buffer);
    for (std::size_t i = 2; i < names.size(); ++i)
        filters.add(plugin(chosen.folder, names[i]));
    fill(chosen.resource ? target.rsrc_fork() : target.data_fork(), filters.top());
}

} // namespace

int main(int argc, char ** argv) {
    try {
        auto const arguments = platform::arguments(argc, argv);
        std::vector<char const *> texts;
        for (auto const & argument : arguments)
            texts.push_back(argument.c_str());
        command::line line(static_cast<int>(texts.size()), texts.data());
        command::option<narrow_string> folder(line, "--plugins|-p", ".", "where the plug-ins lie");
        command::option<bool> resource(line, "--resource|-r", false, "write the resource fork, not the data fork");
        line.digest();
        if (line.size() < 2) {
            line.show_options("plugin_host <source> <target> <filter>...");
            return 1;
        }
        convert(line, {folder(), resource()});
        return 0;
    } catch (...) {
        // The plug-ins are gone already.
        auto const told = io::describe(std::current_exception());
        std::cerr << "plugin_host: " << told.origin << (told.origin.empty() ? "" : ": ") << told.message << '\n';
    }
    return 1;
}
