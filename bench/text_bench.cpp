// Paths cut and joined, and patterns matched, over 100,000 names each.

#include "bench/text_data.h"
#include "socle/any/path.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fnmatch.h>
#include <locale.h>

namespace {

using bench::host_paths;
using bench::name_count;
using bench::names;
using bench::narrow_names;
using bench::paths;

void done(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(name_count));
}

/// Whether a name holds the pieces of a pattern, in turn: what a match comes down to.
std::size_t matches_by_find(std::vector<std::string> const & all, std::vector<std::string_view> const & pieces) {
    std::size_t found = 0;
    for (std::string_view name : all) {
        std::size_t at = 0;
        for (auto const piece : pieces)
            at = at == name.npos ? at : name.find(piece, at);
        found += at != name.npos;
    }
    return found;
}

struct wildcard {
    char16_t const * pattern;
    char const * host_pattern; // which matches as much
    std::vector<std::string_view> pieces;
};

wildcard const by_ending{u"*.txt", "*.txt*", {".txt"}};
wildcard const by_parts{u"*a*e*.png", "*a*e*.png*", {"a", "e", ".png"}};

std::size_t matches(any::string const & pattern, bool accents) {
    std::size_t found = 0;
    for (auto const & name : names(accents))
        found += name.pattern_match(pattern);
    return found;
}

void match_pattern(benchmark::State & state, wildcard const & card, bool accents) {
    any::string const pattern(card.pattern);
    if (matches(pattern, accents) != matches_by_find(narrow_names(accents, false), card.pieces))
        std::abort();
    for (auto _ : state)
        benchmark::DoNotOptimize(matches(pattern, accents));
    done(state);
}

void match_find(benchmark::State & state, wildcard const & card, bool accents) {
    auto const all = narrow_names(accents, false);
    for (auto _ : state)
        benchmark::DoNotOptimize(matches_by_find(all, card.pieces));
    done(state);
}

void match_fnmatch(benchmark::State & state, wildcard const & card, bool accents, char const * locale) {
    locale_t const chosen = newlocale(LC_ALL_MASK, locale, nullptr);
    if (!chosen) {
        state.SkipWithError("no such locale");
        return;
    }
    locale_t const before = uselocale(chosen);
    auto const all = narrow_names(accents, true);
    auto const found = [&] {
        return std::ranges::count_if(
            all, [&](auto const & name) { return fnmatch(card.host_pattern, name.c_str(), 0) == 0; });
    };
    if (static_cast<std::size_t>(found()) != matches(card.pattern, accents))
        std::abort();
    for (auto _ : state)
        benchmark::DoNotOptimize(found());
    done(state);
    uselocale(before);
    freelocale(chosen);
}

BENCHMARK_CAPTURE(match_find, end, by_ending, false)->Name("match *.txt/limit: string_view::find");
BENCHMARK_CAPTURE(match_pattern, end, by_ending, false)->Name("match *.txt/socle, any::string");
BENCHMARK_CAPTURE(match_fnmatch, end, by_ending, false, "C")->Name("match *.txt/fnmatch, C locale");
BENCHMARK_CAPTURE(match_fnmatch, end_utf8, by_ending, false, "C.UTF-8")->Name("match *.txt/fnmatch, UTF-8 locale");

BENCHMARK_CAPTURE(match_find, parts, by_parts, false)->Name("match *a*e*.png/limit: string_view::find");
BENCHMARK_CAPTURE(match_pattern, parts, by_parts, false)->Name("match *a*e*.png/socle, any::string");
BENCHMARK_CAPTURE(match_fnmatch, parts, by_parts, false, "C")->Name("match *a*e*.png/fnmatch, C locale");
BENCHMARK_CAPTURE(match_fnmatch, parts_utf8, by_parts, false, "C.UTF-8")->Name("match *a*e*.png/fnmatch, UTF-8 locale");

BENCHMARK_CAPTURE(match_find, accents, by_parts, true)->Name("match *a*e*.png, accents/limit: string_view::find");
BENCHMARK_CAPTURE(match_pattern, accents, by_parts, true)->Name("match *a*e*.png, accents/socle, any::string");
BENCHMARK_CAPTURE(match_fnmatch, accents, by_parts, true, "C")->Name("match *a*e*.png, accents/fnmatch, C locale");
BENCHMARK_CAPTURE(match_fnmatch, accents_utf8, by_parts, true, "C.UTF-8")
    ->Name("match *a*e*.png, accents/fnmatch, UTF-8 locale");

std::vector<std::u16string> cut(std::u16string const & text) {
    std::vector<std::u16string> parts;
    parts.reserve(1 + static_cast<std::size_t>(std::ranges::count(text, u'/')));
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = std::min(text.find(u'/', start), text.size());
        parts.emplace_back(text, start, end - start);
        start = end + 1;
    }
    return parts;
}

void cut_vector(benchmark::State & state) {
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & text : paths())
            benchmark::DoNotOptimize(cut(text));
    meter.done(state, name_count);
}

void cut_path(benchmark::State & state) {
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & text : paths())
            benchmark::DoNotOptimize(any::path(text, true));
    meter.done(state, name_count);
}

void cut_filesystem(benchmark::State & state) {
    auto const all = host_paths();
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & text : all)
            benchmark::DoNotOptimize(std::filesystem::path(text));
    meter.done(state, name_count);
}

BENCHMARK(cut_vector)->Name("cut a path/limit: a vector of strings");
BENCHMARK(cut_path)->Name("cut a path/socle, any::path");
BENCHMARK(cut_filesystem)->Name("cut a path/std::filesystem::path");

void join_vector(benchmark::State & state) {
    std::vector<std::vector<std::u16string>> all;
    for (auto const & text : paths())
        all.push_back(cut(text));
    bench::meter const meter;
    for (auto _ : state) {
        for (auto const & parts : all) {
            std::size_t size = parts.size();
            for (auto const & part : parts)
                size += part.size();
            std::u16string text;
            text.reserve(size);
            for (auto const & part : parts) {
                if (&part != &parts.front())
                    text += u'\\';
                text += part;
            }
            benchmark::DoNotOptimize(text);
        }
    }
    meter.done(state, name_count);
}

void join_path(benchmark::State & state) {
    std::vector<any::path> all;
    for (auto const & text : paths())
        all.emplace_back(text, true);
    bench::meter const meter;
    for (auto _ : state)
        for (auto const & path : all)
            benchmark::DoNotOptimize(path.full_string());
    meter.done(state, name_count);
}

void join_filesystem(benchmark::State & state) {
    std::vector<std::vector<std::string>> all;
    for (auto const & text : host_paths()) {
        auto & parts = all.emplace_back();
        for (auto const & part : std::filesystem::path(text))
            parts.push_back(part);
    }
    bench::meter const meter;
    for (auto _ : state) {
        for (auto const & parts : all) {
            std::filesystem::path path;
            for (auto const & part : parts)
                path /= part;
            benchmark::DoNotOptimize(path);
        }
    }
    meter.done(state, name_count);
}

BENCHMARK(join_vector)->Name("join a path/limit: a vector of strings");
BENCHMARK(join_path)->Name("join a path/socle, any::path");
BENCHMARK(join_filesystem)->Name("join a path/std::filesystem::path");

} // namespace
