#include "failure.h"

#include "host.h"
#include "host_text.h"

#include <socle/basic/exception.h>
#include <socle/io/exception.h>
#include <socle/nio/filesystem_exception.h>

#include <exception>
#include <filesystem>
#include <iostream>

namespace {

/// `message` up to where the path begins.
narrow_string with_words(narrow_string const & message, char const * path_begins, uint32 code) {
    return code == 0 ? readable_path(message) : message.substr(0, message.find(path_begins)) + ": " + host::words(code);
}

} // namespace

narrow_string current_failure() {
    try {
        throw;
    } catch (nio::filesystem_exception const & e) {
        return with_words(e.message(), " (", e.error());
    } catch (basic::exception const & e) {
        return readable_path(e.message());
    } catch (io::exception const & e) {
        return with_words(e.message(), " \"", static_cast<uint32>(e.error()));
    } catch (un::exception const & e) {
        return readable_path(e.message());
    } catch (std::filesystem::filesystem_error const & e) {
        return "failed: " + e.code().message();
    } catch (std::exception const & e) {
        return readable_path(e.what());
    }
}

int run_program(char const * name, int (*run)(int, char **), int argc, char ** argv) {
    host::report_closed_pipes();
    try {
        return run(argc, argv);
    } catch (usage_error const & e) {
        std::cerr << name << ": " << e.words() << "\nTry '" << name << " --help'.\n";
        return 2;
    } catch (...) {
        std::cerr << name << ": " << current_failure() << '\n';
    }
    return 1;
}
