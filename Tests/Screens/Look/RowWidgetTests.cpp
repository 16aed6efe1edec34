#include "Look/Colours.h"
#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "Screens/Look/DarkPalette.h"
#include "Screens/Look/RowListTest.h"
#include "Screens/Places.h"

#include <QImage>
#include <QPainter>

namespace
{

class RowWidgetTest : public RowListTest
{
protected:
    RowWidgetTest()
    {
        RowContent content = contentOf(u"box"_s);
        content.lines.append({u"80/tcp"_s, RowContent::TextStyle::smallestCaption});
        content.lines.append({u"echo"_s, RowContent::TextStyle::monospaced});
        list->setRows({content, contentOf(u"other"_s)});
        QCoreApplication::processEvents();
        row = list->row(0);
        lines = row->findChildren<PlainLabel *>();
    }

    QRect place(const QWidget *widget) const { return Places::in(*row, widget); }

    RowWidget *row;
    QList<PlainLabel *> lines;
};

} // namespace

TEST_F(RowWidgetTest, SetsDotTextsAndButtonsBesideEachOther)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's buttons keep distances of their own";
#endif
    const auto *dot = row->findChild<StatusDot *>();
    const QList<QPushButton *> buttons = row->buttons();
    EXPECT_EQ(dot->size(), QSize(9, 9));
    EXPECT_EQ(place(dot).left(), 10);
    EXPECT_EQ(Places::gapsBeside(*row, {dot, lines[0], buttons[0], buttons[1], buttons[2]}), QList<int>({8, 8, 8, 8}));
    EXPECT_EQ(place(buttons[2]).right(), row->width() - 10 - 1);
    for (const QWidget *each : std::initializer_list<const QWidget *>{dot, buttons[0], buttons[1], buttons[2]})
        EXPECT_NEAR(place(each).center().y(), row->rect().center().y(), 1);
}

TEST_F(RowWidgetTest, LeavesTwoPointsBetweenItsLinesAndEightAroundThem)
{
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(Places::gapsBelow(*row, {{lines[0]}, {lines[1]}, {lines[2]}, {lines[3]}}), QList<int>({2, 2, 2}));
    for (const PlainLabel *line : lines)
        EXPECT_EQ(place(line).left(), place(lines[0]).left());
    EXPECT_EQ(place(lines[0]).top(), 8);
    EXPECT_EQ(place(lines[3]).bottom(), row->height() - 8 - 1);
}

TEST_F(RowWidgetTest, SetsItsLinesInTheTypeAndColourOfTheirRank)
{
    const QPalette palette = row->palette();
    EXPECT_EQ(lines[0]->font(), Typography::headline());
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    EXPECT_EQ(lines[2]->font(), Typography::smallestCaption());
    EXPECT_EQ(lines[3]->font(), Typography::monospaced(12));
    for (const int primary : {0, 3})
        EXPECT_EQ(lines[primary]->palette().color(QPalette::WindowText), Colours::primary(palette));
    for (const int secondary : {1, 2})
        EXPECT_EQ(lines[secondary]->palette().color(QPalette::WindowText), Colours::secondary(palette));
}

TEST_F(RowWidgetTest, HasTheRingOfItsFocusWithinItsEdges)
{
    QImage unfocused = row->grab().toImage();
    QPainter painter(&unfocused);
    const QRectF place(2, 2, row->width() - 4, row->height() - 5);
    RoundedFrame::drawRing(painter, place, 4, 2, row->palette());
    painter.end();
    row->setFocus();
    EXPECT_EQ(row->grab().toImage(), unfocused);
}

TEST_F(RowWidgetTest, IsPartedFromTheNextByALineInLightAndDark)
{
    for (const QPalette &palette : {window.palette(), darkPalette()}) {
        window.setPalette(palette);
        const QImage picture = list->widget()->grab().toImage();
        const int last = row->geometry().bottom();
        const QColor ground = picture.pixelColor(3, last - 1);
        EXPECT_EQ(ground, palette.color(QPalette::Base));
        const QColor line = picture.pixelColor(3, last);
        EXPECT_GT(Colours::contrast(line, ground), 1.1);
        EXPECT_NEAR(line.red(), 0.88 * ground.red() + 0.12 * palette.color(QPalette::Text).red(), 2) << "faint";
        EXPECT_EQ(picture.pixelColor(3, last + 1), ground);
    }
}
