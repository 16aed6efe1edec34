// The store of text, beside one long string. Few blocks stay as they are, so most are compressed, and what fills a slab
// goes to a file. The input is a list of steps: append, forget, take a snapshot, let the store's own thread finish.

#include "Fuzzing.h"
#include "Support/Mebibyte.h"
#include "Unit/Transcript/ViewedText.h"

#include <QDir>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

using Fuzzing::require;

namespace
{

using Position = TextView::Position;

constexpr std::int64_t mostText = 5 * mebibyte / 2;

/// All that was ever appended, and from where on it is wanted.
struct Model {
    QByteArray all;
    /// From each position on, up to the next.
    std::vector<std::pair<Position, OutputKind>> kinds;
    Position begin = 0;

    void append(const QByteArray &text, OutputKind kind)
    {
        kinds.emplace_back(all.size(), kind);
        all += text;
    }

    Position end() const { return all.size(); }
    QByteArray text() const { return all.sliced(begin); }

    /// The position, or the start of the code point that it is in.
    Position codePoint(Position position) const
    {
        while (position > begin && position < end() && Utf8::isContinuation(all[position]))
            --position;
        return position;
    }

    OutputKind kindAt(Position position) const
    {
        const auto after =
            std::find_if(kinds.begin(), kinds.end(), [position](const auto &mark) { return mark.first > position; });
        return std::prev(after)->second;
    }

    Position lineBegin(Position position) const
    {
        const qsizetype lineFeed = position == 0 ? -1 : all.lastIndexOf('\n', position - 1);
        return std::max(begin, lineFeed + 1);
    }

    Position lineEnd(Position position) const
    {
        const qsizetype lineFeed = all.indexOf('\n', position);
        return lineFeed < 0 ? end() : lineFeed + 1;
    }
};

/// A snapshot, and what it held when it was taken.
struct Kept {
    TextSnapshot snapshot;
    QByteArray text;

    void requireSame() const
    {
        QByteArray forwards;
        for (Position at = snapshot.begin(); at < snapshot.end();) {
            const TextPiece piece = snapshot.pieceAt(at);
            require(piece.begin == at && piece.end > at && !piece.isMissing, "a snapshot's pieces follow one another");
            forwards += piece.bytes;
            at = piece.end;
        }
        require(forwards == text, "a snapshot holds what the text was");
    }
};

TextStorage storage(FuzzedDataProvider &input)
{
    TextStorage storage;
    storage.plainBlocks = static_cast<std::size_t>(input.ConsumeIntegralInRange(1, 4));
    storage.packedBytes = input.ConsumeBool() ? mebibyte : 0;
    storage.folder = QDir::tempPath().toStdString();
    storage.diskReserve = 0;
    storage.diskReserveShare = 0;
    return storage;
}

/// Letters that compress to three quarters, with line feeds or without.
QByteArray noise(FuzzedDataProvider &input)
{
    static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::mt19937_64 engine(input.ConsumeIntegral<std::uint8_t>());
    QByteArray text(input.ConsumeIntegralInRange<qsizetype>(1, 800) * 1024, Qt::Uninitialized);
    const qsizetype line = input.ConsumeBool() ? 77 : text.size();
    std::uint64_t bits = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        bits = at % 10 == 0 ? engine() : bits >> 6U;
        text[at] = at % line == line - 1 ? '\n' : digits[bits % 64];
    }
    return text;
}

QByteArray piece(FuzzedDataProvider &input)
{
    const std::string text = input.ConsumeRandomLengthString(200);
    return Fuzzing::utf8(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

/// Until the store's thread has most likely packed and filed what it has to.
void settle(const ViewedText &text)
{
    for (int naps = 0; naps < 200 && text.memory() > 2 * mebibyte; ++naps)
        std::this_thread::sleep_for(std::chrono::microseconds(200));
}

Position anyPosition(FuzzedDataProvider &input, const Model &model)
{
    const Position length = model.end() - model.begin;
    return model.codePoint(model.begin + length * input.ConsumeIntegral<std::uint16_t>() / 0xffff);
}

void requireSameAround(Position position, const ViewedText &text, const Model &model)
{
    const Position end = model.codePoint(std::min(model.end(), position + 300));
    require(text.text(position, end) == Utf8::toQString(QByteArrayView(model.all).sliced(position, end - position)),
            "the same text between two positions");
    require(text.lineBegin(position) == model.lineBegin(position), "the same beginning of a line");
    require(text.lineEnd(position) == model.lineEnd(position), "the same end of a line");
    require(text.positionAtUtf16(text.utf16Offset(position)) == position, "a UTF-16 offset that leads back");
    if (position == model.end())
        return;
    const TextView::Run run = text.runAt(position);
    require(run.begin <= position && position < run.end, "a run around its position");
    require(run.kind == model.kindAt(position) && model.kindAt(run.begin) == run.kind &&
                model.kindAt(run.end - 1) == run.kind,
            "of the same kind throughout");
}

void requireSame(const ViewedText &text, const Model &model)
{
    QByteArray bytes;
    for (TextView::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number) {
        require(text.block(number).begin() == text.begin() + bytes.size(), "blocks that follow one another");
        bytes += text.bytes(number);
    }
    require(bytes == model.text(), "the same text, block by block");
    require(text.utf16Offset(text.end()) == Utf8::toQString(bytes).size(), "as many UTF-16 units");
    require(text.loss().cause == BlockStore::Cause::none, "nothing lost");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    std::optional<Kept> kept;
    {
        ViewedText text(storage(input));
        Model model;
        for (int steps = 0; steps < 24 && input.remaining_bytes() > 0; ++steps) {
            const auto kind = static_cast<OutputKind>(input.ConsumeIntegralInRange(0, 5));
            const int action = input.ConsumeIntegralInRange(0, 15);
            QByteArray more;
            if (action == 0) {
                text.clear();
                model.begin = model.end();
            } else if (action == 1) {
                model.begin = anyPosition(input, model);
                text.dropFront(model.begin);
            } else if (action == 2) {
                kept = Kept{text.snapshot(), text.isEmpty() ? QByteArray() : model.text()};
            } else if (action == 3) {
                if (kept)
                    kept->requireSame();
                kept.reset();
            } else if (action <= 5) {
                settle(text);
            } else if (action <= 7) {
                more = noise(input);
            } else if (action == 8) {
                more = piece(input);
                more = more.repeated(160'000 / std::max<qsizetype>(1, more.size()));
            } else {
                more = piece(input);
            }
            if (!more.isEmpty() && model.end() + more.size() <= mostText) {
                text.append(more, kind);
                model.append(more, kind);
            }
            require(text.begin() == model.begin && text.end() == model.end(), "as long, and from the same place on");
            requireSameAround(anyPosition(input, model), text, model);
        }
        settle(text);
        requireSame(text, model);
    }
    // Its text outlives the store.
    if (kept)
        kept->requireSame();
    return 0;
}
