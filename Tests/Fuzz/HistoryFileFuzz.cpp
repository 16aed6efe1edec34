// The history file: what somebody else may have made of it, and what is written from any entry.

#include "Fuzzing.h"
#include "HistoryStore/HistoryFile.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>

using Fuzzing::require;

namespace
{

QString anyText(FuzzedDataProvider &input)
{
    const std::string text = input.ConsumeRandomLengthString(64);
    return Fuzzing::text(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

HistoryEntry anyEntry(FuzzedDataProvider &input)
{
    const auto seconds = input.ConsumeIntegralInRange<qint64>(-62'135'596'800, 253'402'300'799); // years 1 to 9999
    return {.id = QUuid(input.ConsumeIntegral<uint>(), input.ConsumeIntegral<ushort>(), input.ConsumeIntegral<ushort>(),
                        1, 2, 3, 4, 5, 6, 7, input.ConsumeIntegral<uchar>()),
            .command = anyText(input),
            .machine = anyText(input),
            .exitCode = input.ConsumeBool() ? std::optional(input.ConsumeIntegral<std::int64_t>()) : std::nullopt,
            .note = anyText(input),
            .date = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC),
            .duration = input.ConsumeFloatingPoint<double>()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray content = Fuzzing::bytes(data, size).toByteArray();
    if (const auto entries = HistoryFile::decode(content)) {
        const QByteArray written = HistoryFile::encode(*entries);
        require(HistoryFile::decode(written) == entries, "what was read is written so that it reads the same");
    }

    FuzzedDataProvider input(data, size);
    QList<HistoryEntry> entries;
    while (input.remaining_bytes() > 0)
        entries << anyEntry(input);
    const auto read = HistoryFile::decode(HistoryFile::encode(entries));
    require(read.has_value(), "whatever an entry holds, the file can be read");
    for (HistoryEntry &entry : entries)
        entry.duration = std::isfinite(entry.duration) ? entry.duration : 0;
    require(read == entries, "an entry is read as it was written");
    return 0;
}
