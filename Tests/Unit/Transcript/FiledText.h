#pragma once

// A text of which most is filed, in a folder of its own, and the file as its owner alone can see it.

#include "Support/Mebibyte.h"
#include "Support/Waiting.h"
#include "Unit/Transcript/RandomText.h"
#include "Unit/Transcript/ViewedText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

class FiledTextTest : public testing::Test
{
protected:
    /// Four plain blocks, one mebibyte packed.
    TextStorage storage(const QString &where = {}) const
    {
        TextStorage storage;
        storage.plainBlocks = 4;
        storage.packedBytes = mebibyte;
        storage.folder = (where.isEmpty() ? folder.path() : where).toStdString();
        storage.diskReserve = 0;
        storage.diskReserveShare = 0;
        return storage;
    }

    /// Lines that compress to three quarters.
    QByteArray lines(std::int64_t size)
    {
        static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        QByteArray text(size, Qt::Uninitialized);
        std::uint64_t bits = 0;
        for (qsizetype at = 0; at < text.size(); ++at) {
            bits = at % 10 == 0 ? engine() : bits >> 6U;
            text[at] = at % 77 == 76 ? '\n' : digits[bits % 64];
        }
        return text;
    }

    /// Appends it in pieces, and waits until all is filed that shall be.
    void fill(ViewedText &text, const QByteArray &bytes)
    {
        for (qsizetype at = 0; at < bytes.size(); at += 50'000)
            text.append(QByteArrayView(bytes).sliced(at, std::min<qsizetype>(50'000, bytes.size() - at)));
        settle(text);
    }

    void settle(const ViewedText &text)
    {
        constexpr std::int64_t most = 4 * mebibyte; // one packed, half of it plain, what is held, a slab that fills up
        EXPECT_TRUE(waitUntil([&] { return text.memory() < most; })) << text.memory();
    }

    static QByteArray allOf(const TextView &text)
    {
        QByteArray bytes;
        for (TextView::BlockNumber number = text.firstBlock(); number < text.endBlock(); ++number)
            bytes += text.bytes(number);
        return bytes;
    }

    /// Drops what is lost, and looks whether the rest is all there: as soon as the last slab was filed, or was not.
    static void expectWhatWasKept(ViewedText &text, const QByteArray &bytes)
    {
        EXPECT_TRUE(waitUntil([&] {
            const TextView::BlockNumber kept = std::max<TextView::BlockNumber>(text.loss().front, text.firstBlock());
            text.dropFront(text.block(kept).begin());
            return allOf(text) == bytes.sliced(text.begin());
        }));
    }

    /// The files of this process that were made in the folder, and have no name there. Linux only.
    QStringList openFiles() const
    {
        QStringList found;
        for (const QFileInfo &each : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files | QDir::System)) {
            if (QFile::symLinkTarget(each.filePath()).startsWith(folder.path()))
                found << each.filePath();
        }
        return found;
    }

    QTemporaryDir folder;
    RandomText random{31};
    /// Of one seed: only for bytes that compress no better.
    std::mt19937_64 engine{32};
};
