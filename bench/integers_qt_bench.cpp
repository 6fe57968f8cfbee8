#include "bench/integers.h"

#include <QBuffer>
#include <QDataStream>

namespace {

QByteArray & memory() {
    static QByteArray bytes(static_cast<int>(bench::integers_size), 'x');
    return bytes;
}

template <class Value>
void read(benchmark::State & state) {
    for (auto _ : state) {
        QBuffer buffer(&memory());
        buffer.open(QIODevice::ReadOnly);
        QDataStream in(&buffer);
        bench::read_integers<Value>(in);
    }
    bench::integers_done<Value>(state);
}

template <class Value>
void write(benchmark::State & state) {
    for (auto _ : state) {
        QBuffer buffer(&memory());
        buffer.open(QIODevice::ReadWrite);
        QDataStream out(&buffer);
        bench::write_integers<Value>(out);
    }
    bench::integers_done<Value>(state);
}

template <class Value>
void add_rows() {
    bench::add(bench::integers_row<Value>("reads"), "QDataStream", read<Value>);
    bench::add(bench::integers_row<Value>("writes"), "QDataStream", write<Value>);
}

[[maybe_unused]] bool const registered = [] {
    add_rows<quint16>();
    add_rows<quint32>();
    add_rows<quint64>();
    return true;
}();

} // namespace
