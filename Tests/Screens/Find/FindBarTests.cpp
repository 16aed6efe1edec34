#include "Find/FindBar.h"

#include "Find/FindablePane.h"
#include "Look/Colours.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"
#include "Screens/ByName.h"
#include "Screens/Places.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace
{

/// A bar by itself, as wide as a window.
class FindBarTest : public testing::Test
{
protected:
    FindBarTest()
    {
        bar.resize(1000, bar.sizeHint().height());
        bar.show();
    }

    template <typename Widget>
    Widget *the(const QString &name) const
    {
        return ByName::find<Widget>(bar, name);
    }

    QString count() const { return countOf(bar); }

    static QString countOf(const FindBar &bar) { return bar.findChild<PlainLabel *>()->text(); }

    /// Until a search that begins now would have been said to go on, and so any that began before.
    static void waitForALaterSearch()
    {
        FindBar later(nullptr);
        later.setText(u"one"_s);
        later.showSearching();
        EXPECT_TRUE(waitUntil([&later] { return countOf(later) == u"Searching…"_s; }));
    }

    FindBar bar{nullptr};
};

} // namespace

TEST_F(FindBarTest, StandsInARowEightPointsApartNoWiderThanItMayBe)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    const auto *field = the<QLineEdit>(u"Find in output"_s);
    const auto *shown = bar.findChild<PlainLabel *>();
    const QList<const QWidget *> row{field, shown, the<QPushButton>(u"Previous match"_s),
                                     the<QPushButton>(u"Next match"_s), the<QCheckBox>(u"Match case"_s)};
    Places::expectSoon([&] { return Places::gapsBeside(bar, row); }, QList<int>({8, 8, 8, 8}));
    EXPECT_EQ(Places::in(bar, field).topLeft().x(), 0);
    EXPECT_EQ(field->width(), 320);
    EXPECT_EQ(shown->width(), QFontMetrics(shown->font()).horizontalAdvance(u"1,000,000 of 1,000,000"_s));
    EXPECT_EQ(shown->font(), Typography::callout());
    EXPECT_EQ(shown->palette().color(QPalette::WindowText), Colours::secondary(bar.palette()));
    int height = 0;
    for (const QWidget *each : row)
        height = std::max(height, each->height());
    EXPECT_EQ(bar.height(), height) << "nothing around them";
    EXPECT_EQ(the<QPushButton>(u"Previous match"_s)->text(), u"Previous"_s);
    EXPECT_EQ(the<QPushButton>(u"Next match"_s)->text(), u"Next"_s);
}

TEST_F(FindBarTest, CountsInWordsAndInTheUsersNumbers)
{
    const QLocale locale;
    bar.showCount(0, 0);
    EXPECT_EQ(count(), u"Not found"_s);
    bar.showCount(0, 1);
    EXPECT_EQ(count(), u"1 match"_s);
    bar.showCount(0, 2);
    EXPECT_EQ(count(), u"2 matches"_s);
    bar.showCount(1, 1);
    EXPECT_EQ(count(), u"1 of 1"_s);
    bar.showCount(1234, 5678);
    EXPECT_EQ(count(), locale.toString(1234) + u" of "_s + locale.toString(5678));
}

TEST_F(FindBarTest, SaysThatItSearchesOnlyWhenThatTakesAMoment)
{
    bar.setText(u"one"_s);
    bar.showCount(1, 3);
    bar.showSearching();
    EXPECT_EQ(count(), u"1 of 3"_s) << "until then what was known";
    EXPECT_TRUE(waitUntil([this] { return count() == u"Searching…"_s; }));
    bar.showCount(2, 3);
    EXPECT_EQ(count(), u"2 of 3"_s);
    bar.showSearching();
    bar.setText({});
    bar.showSearching();
    EXPECT_EQ(count(), QString()) << "there is nothing to look for";
    waitForALaterSearch();
    EXPECT_EQ(count(), QString());
}

TEST_F(FindBarTest, StaysWithItsResultOnceThatIsKnown)
{
    bar.setText(u"one"_s);
    bar.showSearching();
    bar.showCount(1, 1);
    waitForALaterSearch();
    EXPECT_EQ(count(), u"1 of 1"_s);
}

TEST_F(FindBarTest, LetsTheKeysPassForWhichItHasNoUse)
{
    QSignalSpy close(&bar, &FindBar::closeWanted);
    for (const auto &[key, isTaken] :
         std::initializer_list<std::pair<Qt::Key, bool>>{{Qt::Key_Escape, true}, {Qt::Key_F5, false}}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&bar, &press);
        EXPECT_EQ(press.isAccepted(), isTaken) << key;
    }
    EXPECT_EQ(close.count(), 1);
}

TEST_F(FindBarTest, TakesTheBeginningOfALongTextAndHalvesNoCharacter)
{
    QSignalSpy changed(&bar, &FindBar::patternChanged);
    bar.setText(QString(FindBar::longestText, u'x'));
    EXPECT_EQ(bar.text().size(), 10'000);
    bar.setText(QString(FindBar::longestText + 1, u'x'));
    EXPECT_EQ(bar.text().size(), 10'000);
    bar.setText(QString(FindBar::longestText - 1, u'x') + u"\U0001f43b"_s);
    EXPECT_EQ(bar.text(), QString(FindBar::longestText - 1, u'x'));
    bar.setText({});
    EXPECT_TRUE(bar.pattern().isEmpty());
    EXPECT_EQ(changed.count(), 0) << "who sets it knows it";
    QTest::keyClicks(the<QLineEdit>(u"Find in output"_s), u"x"_s);
    EXPECT_EQ(changed.count(), 1);
    the<QCheckBox>(u"Match case"_s)->click();
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(FindBarTest, StepsByReturnAndEnterAndBackWithShift)
{
    QSignalSpy next(&bar, &FindBar::nextWanted);
    QSignalSpy previous(&bar, &FindBar::previousWanted);
    auto *field = the<QLineEdit>(u"Find in output"_s);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(field, key);
        QTest::keyClick(field, key, Qt::ShiftModifier);
    }
    EXPECT_EQ(next.count(), 2);
    EXPECT_EQ(previous.count(), 2);
    ByName::press(bar, u"Next match"_s);
    EXPECT_EQ(next.count(), 3);
    ByName::press(bar, u"Previous match"_s);
    EXPECT_EQ(previous.count(), 3);
}

TEST(FindablePane, HasItsBarSixPointsBelowThePaneAndNothingAround)
{
    RunController run;
    auto *output = new OutputPane(run, run.transcript().text());
    FindablePane findable(output, run, nullptr);
    findable.resize(900, 500);
    findable.show();
    EXPECT_EQ(Places::in(findable, output), findable.rect());
    findable.find();
    const auto *bar = findable.findChild<FindBar *>();
    Places::expectSoon([&] { return Places::gapsBelow(findable, {{output}, {bar}}); }, QList<int>{6});
    EXPECT_EQ(Places::in(findable, bar).bottomRight(), findable.rect().bottomRight());
    EXPECT_EQ(Places::in(findable, output).topLeft(), QPoint(0, 0));
    EXPECT_EQ(Places::in(findable, output).right(), findable.rect().right());
}
