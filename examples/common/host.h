#pragma once

#include <socle/basic/types.h>

#include <filesystem>

/// What the programs ask of the host beside the library. The folders `posix` and `win32` have it for each kind of host.
namespace host {

/// A path of the standard library's, of one in the host's form, and the way back.
std::filesystem::path path_of(narrow_string const & path);
narrow_string text_of(std::filesystem::path const & path);

/// Whether a backslash separates names, as a slash does, and is no letter of them.
bool backslash_separates();

/// What a name stands for. Links are not followed, and nothing is opened.
enum class kind { nothing, file, folder, link, other };
kind kind_of(narrow_string const & path);

/// What a name stands for if links are followed.
kind kind_behind(narrow_string const & path);

/// The host's words for a code of the system: "No space left on device" for 112.
narrow_string words(uint32 code);

/// The columns of the terminal that errors are shown on; 80 if it does not tell.
uint32 terminal_width();

/// From here on, a write to a pipe that nobody reads fails, where it would end the program without a word.
void report_closed_pipes();

} // namespace host
