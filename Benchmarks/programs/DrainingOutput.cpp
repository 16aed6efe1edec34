// How fast a flood of output comes in: through OrbCLI::stream into one string and into the transcript, against one loop
// that reads, decodes and appends to one string.
//
// DrainingOutput [MiB] [ROUNDS]

#include "OrbCLI/OrbCLI.h"
#include "Text/Utf8Repair.h"
#include "Transcript/Transcript.h"
#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <QCoreApplication>

namespace
{

void appendDecoded(std::string &text, const char *data, std::size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    if (const auto repaired = Utf8Repair::repaired(bytes))
        text.append(repaired->constData(), static_cast<std::size_t>(repaired->size()));
    else
        text.append(data, size);
}

void drain(const QStringList &arguments, const OutputHandler &onOutput)
{
    QEventLoop loop;
    OrbCLI::stream(QStringLiteral(BLOCK_WRITER), arguments, std::nullopt, std::nullopt, onOutput,
                   [&loop](int status, const ProcessHandlePointer &) {
                       if (status != 0)
                           std::abort();
                       loop.quit();
                   });
    loop.exec();
}

void expect(std::size_t size, std::size_t expected)
{
    if (size != expected)
        std::abort();
}

void compare(std::size_t blockSize, std::size_t total, int rounds)
{
    const std::string size = std::to_string(blockSize);
    const std::string amount = std::to_string(total);
    const QStringList arguments{QString::fromStdString(size), QString::fromStdString(amount)};
    std::vector<double> bare;
    std::vector<double> intoString;
    std::vector<double> intoTranscript;
    for (int round = 0; round < rounds; ++round) {
        bare.push_back(secondsFor([&] {
            std::string text;
            runBarely({BLOCK_WRITER, size, amount},
                      [&](const char *data, std::size_t count) { appendDecoded(text, data, count); });
            expect(text.size(), total);
        }));
        intoString.push_back(secondsFor([&] {
            std::string text;
            drain(arguments, [&text](QUtf8StringView chunk, bool) {
                text.append(chunk.data(), static_cast<std::size_t>(chunk.size()));
            });
            expect(text.size(), total);
        }));
        intoTranscript.push_back(secondsFor([&] {
            Transcript transcript;
            drain(arguments, [&transcript](QUtf8StringView chunk, bool isError) {
                transcript.append(chunk, isError ? OutputKind::err : OutputKind::out);
            });
            expect(static_cast<std::size_t>(transcript.end() - transcript.begin()), total);
        }));
    }
    const double mebibytes = static_cast<double>(total) / (1024 * 1024);
    printFigures(("writes of " + size + " bytes").c_str(),
                 {{"loop_mib_per_second", mebibytes / median(bare)},
                  {"string_mib_per_second", mebibytes / median(intoString)},
                  {"string_ratio", median(bare) / median(intoString)},
                  {"transcript_mib_per_second", mebibytes / median(intoTranscript)},
                  {"transcript_ratio", median(bare) / median(intoTranscript)}});
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    const std::size_t mebibytes = argumentCount > 1 ? std::strtoull(arguments[1], nullptr, 10) : 1024;
    const int rounds = argumentCount > 2 ? std::atoi(arguments[2]) : 3;
    for (const std::size_t blockSize : {std::size_t{64 * 1024}, std::size_t{4096}, std::size_t{80}})
        compare(blockSize, mebibytes * 1024 * 1024, rounds);
    return 0;
}
