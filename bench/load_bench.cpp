// Starts of a program that is linked with the library, and of one that is linked with a library of one empty function.

#include "bench/rows.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

namespace {

void start(benchmark::State & state, char const * name) {
    // Beside this program, and without what the library's own start in this process has already paid for.
    std::string const program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
    std::string argument = program;
    char * arguments[] = {argument.data(), nullptr};
    for (auto _ : state) {
        pid_t child;
        int status = 1;
        if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0
            || waitpid(child, &status, 0) != child || status != 0) {
            state.SkipWithError("cannot start it");
            return;
        }
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations()));
}

[[maybe_unused]] bool const registered = [] {
    char const * const row = "load the shared library";
    auto const add = [&](char const * who, char const * program) {
        benchmark::RegisterBenchmark((std::string(row) + '/' + who).c_str(), start, program)->UseRealTime();
    };
    add("limit: a library with one empty function", "socle_bench_load_empty");
    add("a library with one empty function, and libstdc++", "socle_bench_load_standard");
    add("socle", "socle_bench_load_socle");
    return true;
}();

} // namespace
