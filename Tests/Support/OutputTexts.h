#pragma once

// Texts such as programs print, for measuring and for holding the output pane to what arrived. The same on every
// machine.

#include <QByteArray>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class OutputTexts
{
public:
    enum class Kind {
        plain,   ///< varied lines of 80 columns, a twentieth of them not ASCII alone
        wide,    ///< the same with a tenth of the characters emoji or CJK
        oneLine, ///< one line without an end
        codes,   ///< lines with 4 KiB of escape codes each
    };
    static constexpr std::array allKinds{Kind::plain, Kind::wide, Kind::oneLine, Kind::codes};

    static std::string_view nameOf(Kind kind);
    static std::optional<Kind> kindNamed(std::string_view name);

    explicit OutputTexts(Kind kind) : m_kind(kind) {}

    /// The next line with its line feed; of the one line the next 80 columns.
    std::string next();

    /// The first lines of a kind, that many bytes or a little more.
    static QByteArray text(Kind kind, qsizetype size);

private:
    std::uint32_t random(std::uint32_t bound);
    void addWord(std::string &line, int length);
    void addWideCharacter(std::string &line);
    std::string words(int columns);
    std::string escapeCodes();

    const Kind m_kind;
    std::uint64_t m_state = 1;
    std::uint64_t m_number = 0;
};
