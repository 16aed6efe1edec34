#include "Screens/ContentView/Screens/HistoryViewTest.h"

#include "Look/Typography.h"
#include "Screens/Places.h"

#include <QLayout>

TEST_F(HistoryViewTest, HasHeaderErrorAndListBelowEachOther)
{
    show();
    ASSERT_TRUE(QDir().mkpath(*window.history.fileURL())); // a folder in the file's place
    window.history.add(entryOf(u"true"_s));
    const auto *title = find<PlainLabel>(view(), u"Last 50 runs"_s);
    const auto *clear = find<QPushButton>(view(), u"Clear all"_s);
    const auto *error = view().findChild<NoteText *>();
    const int usual = view().layout()->spacing();
    EXPECT_GT(usual, 0);
    const auto gaps = [&] { return Places::gapsBelow(view(), {{title, clear}, {error}, {&list()}}); };
    Places::expectSoon(gaps, QList<int>({usual, usual}));
    const QRect column = view().layout()->contentsRect();
    EXPECT_EQ(Places::in(view(), title).left(), column.left());
    EXPECT_EQ(Places::in(view(), clear).right(), column.right());
    EXPECT_EQ(Places::in(view(), &list()).width(), column.width());
    EXPECT_EQ(error->font(), Typography::body());
    EXPECT_EQ(error->palette().color(QPalette::Text), Colours::red(view().palette()));
}

TEST_F(HistoryViewTest, SaysThatThereAreNoRunsBelowItsHeader)
{
    show();
    const auto *title = find<PlainLabel>(view(), u"Last 50 runs"_s);
    const auto *clear = find<QPushButton>(view(), u"Clear all"_s);
    const auto *hint = find<PlainLabel>(view(), noRuns);
    const auto gaps = [&] { return Places::gapsBelow(view(), {{title, clear}, {hint}}); };
    Places::expectSoon(gaps, QList<int>({view().layout()->spacing()}));
    const QRect column = view().layout()->contentsRect();
    EXPECT_EQ(Places::in(view(), hint).left(), column.left());
    EXPECT_EQ(Places::in(view(), hint).width(), column.width());
}

TEST_F(HistoryViewTest, SetsItsTextsInTheTypeAndColourOfTheirRank)
{
    show();
    const auto *title = find<PlainLabel>(view(), u"Last 50 runs"_s);
    EXPECT_EQ(title->font(), Typography::headline());
    EXPECT_EQ(title->palette().color(QPalette::WindowText), Colours::primary(view().palette()));
    const auto *hint = find<PlainLabel>(view(), noRuns);
    EXPECT_EQ(hint->font(), Typography::body());
    EXPECT_EQ(hint->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    window.history.add(entryOf(u"true"_s));
    const QList<PlainLabel *> lines = list().row(0)->findChildren<PlainLabel *>();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0]->font(), Typography::monospaced(12));
    EXPECT_EQ(lines[0]->palette().color(QPalette::WindowText), Colours::primary(view().palette()));
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    const QList<QPushButton *> buttons = list().row(0)->buttons();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons[0]->text(), u"Load"_s);
    EXPECT_EQ(buttons[1]->text(), u"Delete"_s);
}
