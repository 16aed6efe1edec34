#include "OrbCLI/ToolLog.h"

#include "Support/ProcessorTimer.h"

#include <QTextBoundaryFinder>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace
{

void append(ToolLog &log, const QString &text)
{
    log.append(text.toUtf8());
}

/// As a reader counts.
qsizetype characters(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

} // namespace

TEST(ToolLog, KeepsEverythingUpTo200000Characters)
{
    ToolLog log;
    append(log, u"first"_s);
    append(log, QString(199'995, u'x'));
    EXPECT_EQ(log.text(), u"first"_s + QString(199'995, u'x'));
    append(log, QString());
    EXPECT_EQ(log.text().size(), 200'000);
}

TEST(ToolLog, KeepsTheLast150000OfOneMore)
{
    ToolLog log;
    append(log, QString(200'000, u'x'));
    append(log, u"!"_s);
    EXPECT_EQ(log.text(), QString(149'999, u'x') + u'!');
}

TEST(ToolLog, GrowsAgainAfterACut)
{
    ToolLog log;
    append(log, QString(200'001, u'a'));
    append(log, QString(50'000, u'b'));
    EXPECT_EQ(log.text(), QString(150'000, u'a') + QString(50'000, u'b'));
    append(log, u"c"_s);
    EXPECT_EQ(log.text(), QString(99'999, u'a') + QString(50'000, u'b') + u'c');
}

TEST(ToolLog, KeepsTheEndOfATextThatIsTooLongByItself)
{
    ToolLog log;
    append(log, QString(300'000, u'a') + QString(150'000, u'b'));
    EXPECT_EQ(log.text(), QString(150'000, u'b'));
}

TEST(ToolLog, CountsWhatAReaderSees)
{
    // A letter with two marks, CR LF, a flag, a family of emoji, a syllable of three jamo: one character each.
    for (const QString &character :
         {u"e\u0301\u0323"_s, u"\r\n"_s, u"\U0001f1e9\U0001f1ea"_s, u"\U0001f468\u200d\U0001f469\u200d\U0001f467"_s,
          u"\u1112\u1161\u11ab"_s, u"\u00e9"_s, u"\U0001f600"_s}) {
        ToolLog log;
        append(log, character.repeated(200'000));
        EXPECT_EQ(log.text(), character.repeated(200'000));
        append(log, u"!"_s);
        EXPECT_EQ(log.text(), character.repeated(149'999) + u'!') << character.toStdString();
    }
}

TEST(ToolLog, CountsACharacterThatArrivesInPiecesOnce)
{
    ToolLog log;
    for (int count = 0; count < 2000; ++count) {
        append(log, u"x\r"_s);
        append(log, u"\ne"_s);
        append(log, u"\u0301"_s);
        append(log, u"\U0001f1e9"_s);
        append(log, u"\U0001f1ea\U0001f468"_s);
        append(log, u"\u200d"_s);
        append(log, u"\U0001f469"_s);
    }
    const QString before = log.text();
    ASSERT_EQ(characters(before), 10'000);
    append(log, QString(190'000, u'y'));
    EXPECT_EQ(log.text(), before + QString(190'000, u'y'));
    append(log, u"!"_s);
    EXPECT_EQ(characters(log.text()), 150'000);
}

TEST(ToolLog, KeepsAByteOrderMarkAtTheFrontOfAChunk)
{
    ToolLog log;
    append(log, u"\uFEFFa"_s);
    append(log, u"\uFEFFb"_s);
    EXPECT_EQ(log.text(), u"\uFEFFa\uFEFFb"_s);
}

TEST(ToolLog, CapsATextThatReplacesItsOwn)
{
    ToolLog log;
    append(log, QString(200'000, u'x'));
    log.replace(u"new"_s);
    EXPECT_EQ(log.text(), u"new"_s);
    append(log, QString(199'997, u'x'));
    EXPECT_EQ(log.text().size(), 200'000);
    log.replace(QString(300'000, u'y'));
    EXPECT_EQ(log.text(), QString(150'000, u'y'));
    append(log, u"!"_s);
    EXPECT_EQ(log.text(), QString(150'000, u'y') + u'!');
    log.replace(QString(200'000, u'z'));
    EXPECT_EQ(log.text().size(), 200'000) << "no longer than may be kept";
}

TEST(ToolLog, TakesAFloodInTimeThatGrowsWithItsSizeOnly)
{
    for (const QString &piece : {u"x"_s, u"\u0301"_s, u"\U0001f1e9"_s, u"\r"_s, u"\u00e9"_s}) {
        ToolLog log;
        ProcessorTimer timer;
        timer.start();
        for (int count = 0; count < 400'000; ++count)
            append(log, piece);
        RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
#ifndef __SANITIZE_THREAD__ // which makes all code ten times slower and says nothing of the product's speed
        EXPECT_LT(timer.elapsed(), 5000) << piece.toStdString();
#endif
    }
}

TEST(ToolLog, TellsEachChangeOnceAndNothingElse)
{
    ToolLog log;
    int changes = 0;
    QObject::connect(&log, &ToolLog::changed, &log, [&changes] { ++changes; });
    append(log, QString());
    log.replace(QString());
    EXPECT_EQ(changes, 0);
    append(log, QString(200'000, u'x'));
    append(log, u"!"_s);
    EXPECT_EQ(changes, 2) << "a cut is part of the change that made it necessary";
    log.replace(u"new"_s);
    log.replace(u"new"_s);
    EXPECT_EQ(changes, 3);
}

TEST(ToolLog, TakesBothStreamsOfAToolForAsLongAsItLives)
{
    auto log = std::make_unique<ToolLog>();
    const OutputHandler handler = log->outputHandler();
    handler("out ", false);
    handler("err", true);
    EXPECT_EQ(log->text(), u"out err"_s);
    log.reset();
    handler("too late", false);
}
