#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

/// What tests ask of the system, where each has its own way; the file of the system that the tests are built for does
/// it.
namespace support {

/// A path of the standard library's, of text in the host's form: UTF-8 where a path is not bytes; and the way back.
std::filesystem::path path_of(std::string const & text);
std::string text_of(std::filesystem::path const & path);

/// A fresh folder in `parent`; the default one is on a disk that keeps extended attributes, where there are such.
std::filesystem::path make_folder(std::filesystem::path const & parent = {});
/// Removes it with all that is in it, links themselves.
void remove_folder(std::filesystem::path const & folder);

/// Whether a path names anything, links themselves.
bool is_there(std::filesystem::path const & path);

/// Sets a variable of the process; null takes it away.
void set_variable(char const * name, char const * value);

/// Makes a link to a file or folder.
void make_link(std::string const & target, std::filesystem::path const & link);
/// Makes a pipe with a name, if the system has such.
bool make_fifo(std::filesystem::path const & path);
/// Makes a pipe of two handles of the layer: the end to read from, and the one to write to.
bool make_pipe(int (&ends)[2]);
/// Takes the right to write from a file or folder; false if it does not last.
bool make_read_only(std::filesystem::path const & file);

/// Whether names that differ by case alone are two.
bool tells_case();

/// The process's standard input, which it has back at the end of a block.
class standard_input {
public:
    standard_input();
    standard_input(standard_input const &) = delete;
    standard_input & operator=(standard_input const &) = delete;
    ~standard_input();

    void comes_from(std::filesystem::path const & file);
    void close();

private:
    std::intptr_t before_;
};

/// A library, loaded while this lives.
class library {
public:
    explicit library(std::filesystem::path const & file);
    library(library const &) = delete;
    library & operator=(library const &) = delete;
    ~library();

    /// A function of the library's; null if there is none of that name, or no library.
    void (*find(char const * name) const)();

    static bool is_loaded(std::filesystem::path const & file);

private:
    void * loaded_;
};

/// Memory between pages that nobody may touch.
class guarded_memory {
public:
    guarded_memory();
    guarded_memory(guarded_memory const &) = delete;
    guarded_memory & operator=(guarded_memory const &) = delete;
    ~guarded_memory();

    /// The last `count` bytes before the guard.
    std::span<char> last(std::size_t count) const { return {start_ + 2 * page - count, count}; }

private:
    static constexpr std::size_t page = 1 << 16; // a multiple of the page of every machine

    char * start_;
};

/// Whether an exception that one library throws of another's class has its type information from there.
bool shares_type_information();

/// Whether a process can be started in a locale; otherwise whether this one has the code pages of one.
bool starts_in_locales();
bool is_in_locale(std::string const & locale);

// What the system that the test runs on cannot do, for a test to skip; empty if it can.
std::string limit_of_links();
std::string limit_of_creation_times();
/// Of setting the times of a file that cannot be written.
std::string limit_of_times();
/// Of the code for setting the end of a file that is open for reading.
std::string limit_of_resizing();
/// Of processes made by fork(2), and of threads.
std::string limit_of_processes();

} // namespace support
