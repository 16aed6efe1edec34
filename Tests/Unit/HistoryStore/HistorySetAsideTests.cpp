#include "HistoryStore/HistoryFile.h"
#include "Text/WholePattern.h"
#include "Unit/HistoryStore/HistoryStoreTest.h"

#include <QFileInfo>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace
{

/// A file that is no history, or only after a damage.
class HistorySetAsideTest : public HistoryStoreTest
{
protected:
    /// The bytes of the files that were set aside, in the order of their names.
    QList<QByteArray> setAside() const
    {
        QList<QByteArray> contents;
        for (const QString &name : QDir(storeFolder()).entryList({u"history.json.damaged-*"_s}, QDir::Files))
            contents.append(contentOf(storeFolder() + u'/' + name));
        return contents;
    }

    /// The names tell when, in UTC, and those of one second are numbered from two on.
    static void expectNumberedMoments(const QStringList &names)
    {
        static const WholePattern form(u"(history\\.json\\.damaged-([0-9]{8}-[0-9]{6}))(-([0-9]+))?"_s);
        for (const QString &name : names) {
            const QRegularExpressionMatch match = form.match(name);
            ASSERT_TRUE(match.hasMatch()) << name.toStdString();
            QDateTime moment = QDateTime::fromString(match.captured(2), u"yyyyMMdd-hhmmss"_s);
            moment.setTimeZone(QTimeZone::utc());
            EXPECT_LT(std::abs(moment.secsTo(QDateTime::currentDateTimeUtc())), 60) << name.toStdString();
            const int number = match.captured(4).toInt();
            EXPECT_NE(number, 1);
            if (number > 1) {
                const QString before = match.captured(1) + (number == 2 ? QString() : u"-%1"_s.arg(number - 1));
                EXPECT_TRUE(names.contains(before)) << name.toStdString();
            }
        }
    }
};

} // namespace

TEST_F(HistorySetAsideTest, SetsADamagedFileAsideBeforeItWritesANewOne)
{
    const QByteArray damaged = HistoryFile::encode({entryNumber(1), entryNumber(2)}).chopped(1);
    writeFile(damaged);
    HistoryStore store(supportFolder());
    store.add(entryNumber(3));
    store.add(entryNumber(4));
    EXPECT_EQ(setAside(), QList{damaged}) << "the bytes are the user's";
    EXPECT_EQ(reloaded(), store.entries());
    EXPECT_EQ(store.saveError(), std::nullopt);
}

TEST_F(HistorySetAsideTest, SetsEveryDamagedFileAsideUnderANameOfItsOwn)
{
    HistoryStore store(supportFolder());
    const QList<QByteArray> contents{"one", "two", "three"};
    for (const QByteArray &content : contents) {
        writeFile(content);
        store.add(entryNumber(1));
    }
    EXPECT_EQ(setAside().size(), 3);
    expectNumberedMoments(QDir(storeFolder()).entryList({u"history.json.damaged-*"_s}, QDir::Files, QDir::Name));
    for (const QByteArray &content : contents)
        EXPECT_TRUE(setAside().contains(content)) << content.toStdString();
    EXPECT_EQ(store.entries().size(), 3) << "what is in memory is no worse for it";
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistorySetAsideTest, DoesNotParseAFileThatIsTooLargeToBeAHistory)
{
    writeFile({});
    // A hole: many megabytes that take no room on the disk.
    ASSERT_TRUE(QFile::resize(filePath(), HistoryFile::largestSize + 1));
    HistoryStore store(supportFolder());
    EXPECT_TRUE(store.entries().isEmpty());
    store.add(entryNumber(1));
    EXPECT_EQ(reloaded(), store.entries());
    const QStringList aside = QDir(storeFolder()).entryList({u"history.json.damaged-*"_s}, QDir::Files);
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(QFileInfo(storeFolder() + u'/' + aside.first()).size(), HistoryFile::largestSize + 1);
}

TEST_F(HistorySetAsideTest, ReadsAFileOfTheLargestSize)
{
    writeFile("[]" + QByteArray(HistoryFile::largestSize - 2, ' '));
    HistoryStore store(supportFolder());
    store.add(entryNumber(1));
    EXPECT_EQ(setAside(), QList<QByteArray>());
    EXPECT_EQ(reloaded(), store.entries());
}

TEST_F(HistorySetAsideTest, KeepsTheBytesOfAFileThatIsCutAnywhereOrDamagedInAnyByte)
{
    const HistoryEntry first = entryNumber(1);
    const QByteArray content = HistoryFile::encode({first});
    QList<QByteArray> damaged;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    constexpr qsizetype step = 7; // all of them take minutes there
#else
    constexpr qsizetype step = 1;
#endif
    for (qsizetype at = 1; at < content.size(); at += step) {
        damaged.append(content.first(at));
        damaged.append(content);
        damaged.last()[at] = static_cast<char>(damaged.last()[at] ^ 0x15);
    }
    int keptAside = 0;
    for (const QByteArray &bytes : damaged) {
        writeFile(bytes);
        HistoryStore store(supportFolder());
        store.add(entryNumber(2));
        EXPECT_EQ(reloaded(), store.entries());
        const bool isReadable = HistoryFile::decode(bytes).has_value();
        EXPECT_EQ(store.entries().size(), isReadable ? 2 : 1) << bytes.toStdString();
        EXPECT_EQ(setAside(), isReadable ? QList<QByteArray>() : QList{bytes});
        keptAside += isReadable ? 0 : 1;
        ASSERT_TRUE(QDir(storeFolder()).removeRecursively());
    }
    EXPECT_GT(keptAside, damaged.size() / 2);
}
