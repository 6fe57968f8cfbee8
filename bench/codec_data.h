#pragma once

#include "bench/rows.h"

/// The texts that the codecs and their peers are measured on, one item a unit.
namespace codec_data {

inline std::size_t const count = bench::sized(8u << 20);

/// Units in a fixed order from a text that is repeated.
inline wide_string repeated(wide_string const & text) {
    wide_string units;
    units.reserve(count + text.size());
    while (units.size() < count)
        units += text;
    units.resize(count);
    return units;
}

inline wide_string const & ascii() {
    static wide_string const text =
        repeated(u"The quick brown fox jumps over the lazy dog, 0123456789 times; so what?\n");
    return text;
}

inline wide_string const & european() {
    static wide_string const text =
        repeated(u"Größe, naïve façade, señor, œuvre, smörgåsbord und Übermut - 25 € für Frühstück.\n");
    return text;
}

inline wide_string const & cjk() {
    static wide_string const text = repeated(u"吾輩は猫である。名前はまだ無い。どこで生れたかとんと見当がつかぬ。\n");
    return text;
}

inline void done(benchmark::State & state) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}

} // namespace codec_data
