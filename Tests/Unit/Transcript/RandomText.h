#pragma once

// Random text for tests that compare with a plain model: characters that join, pair, wrap and cut in every way.

#include "Support/Seed.h"

#include <QString>
#include <QStringList>

#include <random>
#include <vector>

class RandomText
{
public:
    explicit RandomText(unsigned usualSeed) : m_engine(seedOr(usualSeed)) {}

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_engine); }

    /// Bytes that hardly compress, without a line end.
    QByteArray noise(qsizetype size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        for (char &byte : bytes)
            byte = static_cast<char>(' ' + below(64));
        return bytes;
    }

    /// A text of that many code points. Valid: no lone surrogates.
    QString text(int codePoints)
    {
        static const std::vector<char32_t> characters{
            U'a',    U'b',    U' ',   U'\t',  U'\r',   U'\n',   U'\n',   0x1b,   0x00e9,   0x0301,
            0x0308,  0x200d,  0x200c, 0xfe0f, 0x1f468, 0x1f469, 0x1f3fd, 0x2764, 0x1f1e9,  0x1f1ea,
            0x1100,  0x1161,  0x11a8, 0xac00, 0xac01,  0x0600,  0x0903,  0x4e2d, 0xff21,   0x05d0,
            0x0627,  0x202e,  0xfeff, 0x0915, 0x094d,  0x0937,  0x093c,  0x09b7, 0x0bcd,   0x0e33,
            0x1f600, 0xe0061, 0x00ad, 0x2028, 0x0085,  0x00,    0x20e3,  U'1',   0x10ffff, 0xa9,
        };
        QString result;
        for (int index = 0; index < codePoints; ++index)
            result +=
                QString::fromUcs4(&characters[static_cast<std::size_t>(below(static_cast<int>(characters.size())))], 1);
        return result;
    }

    /// The text cut at random code points; empty pieces occur.
    QList<QByteArray> chunks(const QString &text, int longest)
    {
        const QList<uint> codePoints = text.toUcs4();
        QList<QByteArray> result;
        for (qsizetype at = 0; at < codePoints.size();) {
            const qsizetype length = std::min<qsizetype>(below(longest + 1), codePoints.size() - at);
            const std::u32string piece(codePoints.begin() + at, codePoints.begin() + at + length);
            result << QString::fromUcs4(piece.data(), length).toUtf8();
            at += length;
        }
        return result;
    }

private:
    std::mt19937 m_engine;
};
