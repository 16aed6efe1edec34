#include "StreamRecording.h"
#include "Support/TestTools.h"

#include <csignal>

using namespace Qt::StringLiterals;

TEST(Input, IsTheNullDeviceWithoutAText)
{
    const auto recording = record(QStringLiteral(RUNNER_PROBE), {u"report"_s});
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->output.startsWith(u"input: null device\n"_s)) << recording->output.toStdString();
}

TEST(Input, IsAPipeThatIsClosedAtOnceForAnEmptyText)
{
    TestTools tools;
    const auto kind = record(QStringLiteral(RUNNER_PROBE), {u"report"_s}, QString());
    const auto reader = record(tools.addTool(u"reader"_s, u"cat; echo end"_s), {}, QString());
    ASSERT_TRUE(kind->waitForEnd());
    EXPECT_TRUE(kind->output.startsWith(u"input: pipe\n"_s)) << kind->output.toStdString();
    ASSERT_TRUE(reader->waitForEnd());
    EXPECT_EQ(reader->output, u"end\n"_s);
}

TEST(Input, ArrivesWholeInUtf8)
{
    TestTools tools;
    const QString text = u"\uFEFFd\u00e9j\u00e0 \U0001F600\n"_s + QChar(0) + u"no line feed at the end"_s;
    const auto recording = record(tools.addTool(u"reader"_s, u"exec cat"_s), {}, text);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, text);
}

TEST(Input, OfManyMegabytesArrivesWholeWhileTheOutputComesBack)
{
    TestTools tools;
    QString text;
    for (int number = 0; text.size() < 5'000'000; ++number)
        text += u"line %1\n"_s.arg(number);
    const auto recording = record(tools.addTool(u"reader"_s, u"exec cat"_s), {}, text);
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_TRUE(recording->output == text);
}

TEST(Input, EndsQuietlyWhenTheChildClosesIt)
{
    TestTools tools;
    const auto recording =
        record(tools.addTool(u"closer"_s, u"exec <&-; echo closed; exit 2"_s), {}, QString(20'000'000, u'x'));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"closed\n"_s);
    EXPECT_EQ(recording->status, 2);
}

TEST(Input, EndsQuietlyWhenTheChildReadsOnlySomeOfIt)
{
    TestTools tools;
    const auto recording =
        record(tools.addTool(u"sampler"_s, u"head -c 100000 | wc -c | tr -d ' '"_s), {}, QString(20'000'000, u'x'));
    ASSERT_TRUE(recording->waitForEnd());
    EXPECT_EQ(recording->output, u"100000\n"_s);
    EXPECT_EQ(recording->status, 0);
}

TEST(Input, ThatIsNeverReadHoldsUpNothing)
{
    TestTools tools;
    const auto deaf = record(tools.addTool(u"deaf"_s, u"echo up; exec sleep 600"_s), {}, QString(20'000'000, u'x'));
    ASSERT_TRUE(waitUntil([&] { return !deaf->output.isEmpty(); }));
    const auto other = record(tools.addTool(u"reader"_s, u"exec cat"_s), {}, u"text"_s);
    ASSERT_TRUE(other->waitForEnd());
    EXPECT_EQ(other->output, u"text"_s);
    EXPECT_FALSE(deaf->hasEnded());
    deaf->handle->cancel();
    ASSERT_TRUE(deaf->waitForEnd());
    EXPECT_EQ(deaf->status, SIGTERM);
}

TEST(Input, ReachesAGrandchildAfterTheChildsEnd)
{
    TestTools tools;
    const QString body =
        u"exec 3<&0; { cat <&3 | wc -c | tr -d ' ' > '%1.new'; mv '%1.new' '%1'; } >/dev/null 2>&1 & exit 0"_s.arg(
            tools.path(u"count"_s));
    const auto recording = record(tools.addTool(u"parent"_s, body), {}, QString(3'000'000, u'x'));
    ASSERT_TRUE(recording->waitForEnd());
    QFile count(tools.path(u"count"_s));
    ASSERT_TRUE(waitUntil([&] { return count.exists(); }));
    ASSERT_TRUE(count.open(QIODevice::ReadOnly));
    EXPECT_EQ(count.readAll(), "3000000\n");
}
