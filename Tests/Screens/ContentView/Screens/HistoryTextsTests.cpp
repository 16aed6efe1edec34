#include "ContentView/Screens/HistoryTexts.h"

#include "Support/ProcessorTimer.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace HistoryTexts;

namespace
{

HistoryEntry entryWith(std::optional<std::int64_t> exitCode, const QString &note)
{
    HistoryEntry entry;
    entry.exitCode = exitCode;
    entry.note = note;
    return entry;
}

} // namespace

TEST(HistoryTexts, TellTheExitCodeWhateverTheNote)
{
    EXPECT_EQ(statusText(entryWith(0, QString())), u"exit 0"_s);
    EXPECT_EQ(statusText(entryWith(127, u"stopped"_s)), u"exit 127"_s);
    EXPECT_EQ(statusText(entryWith(-1, QString())), u"exit -1"_s);
    EXPECT_EQ(statusText(entryWith(std::numeric_limits<std::int64_t>::min(), QString())),
              u"exit -9223372036854775808"_s);
}

TEST(HistoryTexts, TellTheNoteOfARunWithoutAnExitCode)
{
    EXPECT_EQ(statusText(entryWith(std::nullopt, u"stopped by user"_s)), u"stopped by user"_s);
    EXPECT_EQ(statusText(entryWith(std::nullopt, u" "_s)), u" "_s);
    EXPECT_EQ(statusText(entryWith(std::nullopt, QString())), u"no exit status"_s);
}

TEST(HistoryTexts, ShowTheFirstLineThatIsNotEmpty)
{
    EXPECT_EQ(firstLine(u"echo a\necho b"_s), u"echo a"_s);
    EXPECT_EQ(firstLine(u"\n\n\necho c\n"_s), u"echo c"_s);
    EXPECT_EQ(firstLine(u"  \necho d"_s), u"  "_s);
    EXPECT_EQ(firstLine(u"one"_s), u"one"_s);
}

TEST(HistoryTexts, ShowTheWholeCommandWhenNoLineHoldsAnything)
{
    EXPECT_EQ(firstLine(QString()), QString());
    EXPECT_EQ(firstLine(u"\n\n"_s), u"\n\n"_s);
}

TEST(HistoryTexts, FindTheFirstLineOfAHugeScriptAtOnce)
{
    const QString script = u"first\n"_s + QString(u"line\n"_s).repeated(5000000);
    ProcessorTimer timer;
    timer.start();
    for (int round = 0; round < 1000; ++round)
        EXPECT_EQ(firstLine(script).size(), 5);
    EXPECT_LT(timer.elapsed(), 2000);
}
