// The transcript, beside a list of texts. The input is a list of steps: what to append, in which kind, how often.

#include "Fuzzing.h"
#include "Transcript/Transcript.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <deque>
#include <limits>

using Fuzzing::require;

namespace
{

/// As slow and simple as the promise: every count is made anew.
class Model
{
public:
    void append(const QByteArray &text, OutputKind kind)
    {
        if (m_segments.empty() || m_segments.back().kind != kind)
            m_segments.push_back({{}, kind, 0});
        Segment &last = m_segments.back();
        last.text += text;
        last.characters = charactersOf(last.text);
        qint64 characters = 0;
        for (const Segment &segment : m_segments)
            characters += segment.characters;
        if (characters > Transcript::characterBound && m_segments.size() >= 2)
            m_segments.pop_front();
    }

    void clear() { m_segments.clear(); }

    void requireSame(const Transcript &transcript) const
    {
        require(transcript.isEmpty() == m_segments.empty(), "empty when nothing was appended");
        require(transcript.segmentCount() == m_segments.size(), "as many segments");
        QByteArray all;
        for (std::size_t index = 0; index < m_segments.size(); ++index) {
            const OutputSegment segment = transcript.segment(index);
            require(segment.kind == m_segments[index].kind, "of the same kinds");
            require(segment.text == Utf8::toQString(m_segments[index].text), "with the same texts");
            all += m_segments[index].text;
        }
        require(transcript.plainText() == Utf8::toQString(all), "joined as they are");
        require(transcript.end() - transcript.begin() == all.size(), "as long as its texts");
    }

private:
    struct Segment {
        QByteArray text;
        OutputKind kind;
        qint64 characters;
    };

    static qint64 charactersOf(const QByteArray &text)
    {
        GraphemeCounter counter(std::numeric_limits<int>::max());
        counter.add(text);
        return counter.count();
    }

    std::deque<Segment> m_segments;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Transcript transcript;
    Model model;
    for (int steps = 0; steps < 12 && input.remaining_bytes() > 0; ++steps) {
        const auto kind = static_cast<OutputKind>(input.ConsumeIntegralInRange(0, 5));
        const int action = input.ConsumeIntegralInRange(0, 15);
        if (action == 0) {
            transcript.clear();
            model.clear();
        } else {
            const std::string piece = input.ConsumeRandomLengthString(200);
            QByteArray text = Fuzzing::utf8(QByteArrayView(piece.data(), static_cast<qsizetype>(piece.size())));
            if (action == 1) // past a block, and with a few of them past the bound
                text = text.repeated(160'000 / std::max<qsizetype>(1, text.size()));
            transcript.append(QUtf8StringView(text), kind);
            model.append(text, kind);
        }
        model.requireSame(transcript);
    }
    return 0;
}
