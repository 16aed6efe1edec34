#pragma once

// One block of the output's text: its bytes, and where in them one kind of output follows another.

#include "Transcript/OutputSegment.h"
#include "Transcript/PageMemory.h"

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <vector>

/// From here to the next mark, or the block's end, the text is of this kind.
struct KindMark {
    /// In bytes from the block's.
    std::int32_t begin = 0;
    OutputKind kind = OutputKind::out;
};

struct TextBlock {
    static constexpr std::int32_t capacity = 128 * 1024;
    /// With so many marks the block is full, whatever its text.
    static constexpr std::size_t mostKinds = 2048;

    /// So many are kept to be filled again.
    static constexpr std::size_t mostFree = 32;

    /// Holds this text and nothing else any more; keeps its memory.
    void beginWith(QByteArrayView text);
    QByteArrayView text() const { return {memory.data(), size}; }
    /// All that the block holds as one piece: the text and then the marks. Once the block is full.
    QByteArray content() const;
    /// Becomes a sentence that stands for so many bytes of text that are missing, and is never longer than they were.
    void becomeMissing(std::int64_t bytes);
    /// Takes the marks from there: `contentSize` bytes lie in the memory, the first `textSize` of them text.
    void readContent(std::int32_t textSize, std::int32_t contentSize);

    /// Room for a content. Pages that are not used cost nothing.
    PageMemory memory{capacity + (mostKinds + 2) * sizeof(KindMark)};
    std::int32_t size = 0;
    /// The first begins at 0.
    std::vector<KindMark> kinds;
    /// The block was not kept or could not be read: its text is a sentence that says so.
    bool isMissing = false;
};
