#pragma once

// One stream of a tool's output, collected for a caller who says how much of it has a use. Main thread.

#include <QByteArray>
#include <QString>
#include <QUtf8StringView>

#include <cstdint>

namespace OrbCLI
{

/// How much of each stream a caller can use, in bytes, and what becomes of a tool that prints more.
struct OutputNeed {
    enum class Beyond : std::uint8_t {
        stopTool, ///< the tool is asked to terminate and its pipes are closed; nothing of this stream is kept
        keepEnd,  ///< the tool goes on; what is kept begins with a line that says so
    };

    qsizetype most;
    Beyond beyond;
};

/// A list, of which a part is of no use.
inline constexpr OutputNeed wholeList{qsizetype{64} * 1024 * 1024, OutputNeed::Beyond::stopTool};
/// A log, or a tool's explanation, whose end tells most.
inline constexpr OutputNeed endOfLog{qsizetype{4} * 1024 * 1024, OutputNeed::Beyond::keepEnd};

class CollectedOutput
{
public:
    explicit CollectedOutput(OutputNeed need) : m_need(need) {}

    /// False once: when with this text it is more than is needed, and the tool is to be stopped.
    bool append(QUtf8StringView text);

    /// Whether more came than a caller can use who needs all of it.
    bool isTooMuch() const { return m_isCut && m_need.beyond == OutputNeed::Beyond::stopTool; }

    QString text() const;

private:
    OutputNeed m_need;
    QByteArray m_text;
    bool m_isCut = false;
};

} // namespace OrbCLI
