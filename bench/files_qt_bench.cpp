// Qt beside the rows of files, walks and numbers.

#include "bench/files_data.h"
#include "bench/jobs.h"
#include "bench/paths_data.h"
#include "bench/pieces_data.h"
#include "bench/walk_data.h"

#include <QDataStream>
#include <QDateTime>
#include <QDirIterator>
#include <QFile>

namespace {

QString text_of(std::string const & path) { return QString::fromStdString(path); }

void read_bytes() {
    QFile in(text_of(bench::text_file()));
    in.open(QIODevice::ReadOnly);
    unsigned sum = 0;
    for (char byte; in.getChar(&byte);)
        sum += static_cast<unsigned char>(byte);
    benchmark::DoNotOptimize(sum);
}

void write_bytes() {
    QFile out(text_of(bench::target_file()));
    out.open(QIODevice::WriteOnly);
    for (uint32 i = 0; i < bench::file_size; ++i)
        out.putChar(static_cast<char>(i));
}

void read_lines() {
    QFile in(text_of(bench::text_file()));
    in.open(QIODevice::ReadOnly);
    char line[256];
    qint64 total = 0;
    for (qint64 length; (length = in.readLine(line, sizeof line)) > 0;)
        total += length;
    benchmark::DoNotOptimize(total);
}

void copy() {
    QString const target = text_of(bench::target_file());
    QFile::remove(target);
    if (!QFile::copy(text_of(bench::large_file()), target))
        std::abort();
}

uint64 records() {
    QFile in(text_of(bench::records_file()));
    in.open(QIODevice::ReadOnly);
    QDataStream stream(&in);
    bench::record_sum sum;
    for (;;) {
        quint32 type, creator;
        quint16 flags, reserved;
        qint16 v, h;
        stream >> type >> creator >> flags >> v >> h >> reserved;
        if (stream.status() != QDataStream::Ok)
            return sum;
        sum.add(type, creator, flags, v, h);
    }
}

uint64 numbers() {
    QFile in(text_of(bench::numbers_file()));
    in.open(QIODevice::ReadOnly);
    uint64 sum = 0;
    while (!in.atEnd())
        for (QByteArray const & token : in.readLine().trimmed().split(' '))
            sum = sum * 31 + token.toULongLong();
    return sum;
}

void walk(benchmark::State & state, bool attributes) {
    bench::meter const meter;
    for (auto _ : state) {
        QDirIterator walk(text_of(bench::walk_tree().string()), QDir::Files, QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            walk.next();
            if (attributes) {
                QFileInfo const about = walk.fileInfo();
                benchmark::DoNotOptimize(about.size());
                benchmark::DoNotOptimize(about.lastModified());
            }
        }
    }
    meter.done(state, uint64(bench::walk_folders) * bench::walk_files);
}

[[maybe_unused]] bool const registered = [] {
    using namespace bench;
    using benchmark::State;
    add_file_row(file_reads, "QFile::getChar", read_bytes, file_size);
    add_file_row(file_writes, "QFile::putChar", write_bytes, file_size);
    add_file_row(file_lines, "QFile::readLine", read_lines, file_size);
    add_file_row(file_copies, "QFile::copy", copy, copy_size);
    add(records_job(), "QDataStream", records);
    add(numbers_job(), "QFile::readLine and split", numbers);
    bench::add(walk_row(false), "QDirIterator", walk, false);
    bench::add(walk_row(true), "QDirIterator, size and time", walk, true);
    bench::add(parsing, "QByteArray::toULongLong", [](State & state) {
        parse(state, [](std::string const & text) {
            return QByteArray::fromRawData(text.data(), static_cast<int>(text.size())).toULongLong();
        });
    });
    bench::add(formatting, "QByteArray::number", [](State & state) {
        format(state, [](uint64 value) { return QByteArray::number(static_cast<qulonglong>(value)); });
    });
    add_path(exists_row, "QFile::exists", [](std::string const & path) { return QFile::exists(text_of(path)); });
    add_path(fork_row, "QFile", [](std::string const & path) {
        QFile in(text_of(path));
        char bytes[1024];
        return in.open(QIODevice::ReadOnly | QIODevice::Unbuffered) && in.read(bytes, sizeof bytes) == sizeof bytes;
    });
    return true;
}();

} // namespace
