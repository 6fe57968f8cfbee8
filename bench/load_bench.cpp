// Starts of a program that is linked with the library, and of one that is linked with a library of one empty function.

#include "bench/rows.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

namespace {

double seconds(timeval const & time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// The processor time of the process that is started, which a busy machine changes little.
void start(benchmark::State & state, char const * name) {
    std::string const program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
    std::string argument = program;
    char * arguments[] = {argument.data(), nullptr};
    for (auto _ : state) {
        pid_t child;
        int status = 1;
        rusage used;
        if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0
            || wait4(child, &status, 0, &used) != child || status != 0) {
            state.SkipWithError("cannot start it");
            return;
        }
        state.SetIterationTime(seconds(used.ru_utime) + seconds(used.ru_stime));
    }
    state.SetItemsProcessed(static_cast<int64>(state.iterations()));
}

[[maybe_unused]] bool const registered = [] {
    auto const add = [&](char const * who, char const * program) {
        std::string const name = std::string("load the shared library/") + who;
        benchmark::RegisterBenchmark(name.c_str(), start, program)->UseManualTime();
    };
    add("limit: a library with one empty function", "socle_bench_load_empty");
    add("a library with one empty function, and libstdc++", "socle_bench_load_standard");
    add("socle", "socle_bench_load_socle");
    return true;
}();

} // namespace
