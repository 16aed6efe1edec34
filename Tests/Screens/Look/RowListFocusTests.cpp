#include "Look/Rows/RowWidget.h"
#include "Screens/Look/RowListTest.h"

#include <QMenu>
#include <QProxyStyle>

TEST_F(RowListTest, KeepsTheFocusWithItsButtonWhileOtherRowsComeAndGo)
{
    list->setRows(rowsNumbered(0, 10));
    button(4, 2)->setFocus();
    list->setRows(rowsNumbered(2, 12));
    EXPECT_EQ(focusedText(), u"Delete row4"_s);
    list->setRows(rowsNumbered(0, 5));
    EXPECT_EQ(focusedText(), u"Delete row4"_s);
}

TEST_F(RowListTest, GivesTheFocusOfARemovedRowToTheOneInItsPlace)
{
    list->setRows(rowsNumbered(0, 4));
    button(1, 2)->setFocus();
    list->setRows({contentOf(u"row0"_s), contentOf(u"row2"_s), contentOf(u"row3"_s)});
    EXPECT_EQ(focusedText(), u"Delete row2"_s);
    list->setRows({contentOf(u"row0"_s)});
    EXPECT_EQ(focusedText(), u"Delete row0"_s);
    list->setRows({});
    EXPECT_EQ(focusedText(), QString());
    EXPECT_NE(QApplication::focusWidget(), nullptr);
}

TEST_F(RowListTest, KeepsTheFocusWithTheRowWhileItsButtonIsDisabledAndGivesItBack)
{
    list->setRows({contentOf(u"box"_s, true), contentOf(u"other"_s)});
    button(0, 2)->setFocus();
    RowContent busy = contentOf(u"box"_s, true);
    for (RowContent::Button &each : busy.buttons)
        each.isEnabled = false;
    list->setRows({busy, contentOf(u"other"_s)});
    EXPECT_EQ(QApplication::focusWidget(), list->row(0));
    EXPECT_EQ(list->findChildren<RowWidget *>().size(), 2); // moving the focus in the middle of it made no third
    list->setRows({contentOf(u"box"_s, true), contentOf(u"other"_s)});
    EXPECT_EQ(focusedText(), u"Delete box"_s);
}

TEST_F(RowListTest, DoesNotFetchTheFocusBackFromWhereTheUserMovedIt)
{
    disableTheFocusedButton();
    before->setFocus();
    list->setRows({contentOf(u"box"_s)});
    EXPECT_EQ(QApplication::focusWidget(), before);
}

TEST_F(RowListTest, LeavesTheFocusOnTheRowToWhichTheUserCameBack)
{
    disableTheFocusedButton();
    before->setFocus();
    list->row(0)->setFocus(Qt::MouseFocusReason);
    list->setRows({contentOf(u"box"_s)});
    EXPECT_EQ(QApplication::focusWidget(), list->row(0));
}

TEST_F(RowListTest, GivesTheFocusBackToTheButtonAlsoAfterAMenuWasOpen)
{
    disableTheFocusedButton();
    QMenu menu;
    menu.addAction(u"Undo"_s);
    menu.popup(window.pos());
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&menu));
    menu.close();
    ASSERT_EQ(QApplication::focusWidget(), list->row(0));
    list->setRows({contentOf(u"box"_s)});
    EXPECT_EQ(focusedText(), u"Delete box"_s);
}

TEST_F(RowListTest, DoesNotFetchTheFocusBackAfterTheWindowWasInactive)
{
    disableTheFocusedButton();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    list->setRows({contentOf(u"box"_s)});
    EXPECT_EQ(window.focusWidget(), button(0, 2));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    before->setFocus();
    RowContent row = contentOf(u"box"_s);
    row.lines[1].text = u"another caption"_s;
    list->setRows({row});
    EXPECT_EQ(QApplication::focusWidget(), before);
}

TEST_F(RowListTest, GivesTheFocusOfARemovedRowToItsNeighbourWhereverThatIsNow)
{
    list->setRows({contentOf(u"a"_s), contentOf(u"b"_s), contentOf(u"c"_s)});
    button(1, 2)->setFocus();
    list->setRows({contentOf(u"x"_s), contentOf(u"y"_s), contentOf(u"a"_s), contentOf(u"c"_s)});
    EXPECT_EQ(focusedText(), u"Delete c"_s);
    list->setRows({contentOf(u"z"_s), contentOf(u"x"_s), contentOf(u"a"_s), contentOf(u"new"_s)});
    EXPECT_EQ(focusedText(), u"Delete a"_s);
    list->setRows({contentOf(u"1"_s), contentOf(u"2"_s)});
    EXPECT_EQ(focusedText(), u"Delete 2"_s);
}

TEST_F(RowListTest, KeepsFocusAndPlaceWhenTheStyleChanges)
{
    list->setRows(rowsNumbered(0, 300));
    button(100, 2)->setFocus();
    list->verticalScrollBar()->setValue(5000);
    window.setStyleSheet(u"QLineEdit { color: red }"_s);
    EXPECT_EQ(list->verticalScrollBar()->value(), 5000);
    EXPECT_EQ(focusedText(), u"Delete row100"_s);
}

TEST_F(RowListTest, MovesThroughAllButtonsByTabInReadingOrder)
{
    list->setRows(rowsNumbered(0, 60));
    before->setFocus();
    for (int number = 0; number < 60; ++number) {
        for (const QString &label : {u"Start"_s, u"Delete"_s}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            ASSERT_EQ(focusedText(), label + u" row%1"_s.arg(number));
            EXPECT_TRUE(isInView(number)) << number;
        }
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), after);
    for (int number = 59; number >= 0; --number) {
        for (const QString &label : {u"Delete"_s, u"Start"_s}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
            ASSERT_EQ(focusedText(), label + u" row%1"_s.arg(number));
        }
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), before);
}

TEST_F(RowListTest, KeepsTheTabOrderWhenRowsAreInsertedAndMoved)
{
    list->setRows(rowsNumbered(0, 3));
    list->setRows({contentOf(u"row2"_s), contentOf(u"new"_s), contentOf(u"row0"_s), contentOf(u"row1"_s)});
    before->setFocus();
    QStringList order;
    while (QApplication::focusWidget() != after && order.size() < 20) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order << focusedText();
    }
    EXPECT_EQ(order, (QStringList{u"Start row2"_s, u"Delete row2"_s, u"Start new"_s, u"Delete new"_s, u"Start row0"_s,
                                  u"Delete row0"_s, u"Start row1"_s, u"Delete row1"_s, QString()}));
}

TEST_F(RowListTest, MovesFromRowToRowByTheArrowAndPageKeys)
{
    QList<RowContent> rows = rowsNumbered(0, 200);
    rows[1] = contentOf(u"row1"_s, true);
    list->setRows(rows);
    button(0, 0)->setFocus(Qt::TabFocusReason);
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    press(Qt::Key_Down);
    EXPECT_EQ(focusedText(), u"Stop row1"_s); // Start is disabled there
    press(Qt::Key_Down);
    EXPECT_EQ(focusedText(), u"Start row2"_s);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(focusedText(), u"Start row0"_s);
    press(Qt::Key_Up);
    EXPECT_EQ(focusedText(), u"Start row0"_s);
    press(Qt::Key_End);
    EXPECT_EQ(focusedText(), u"Start row199"_s);
    EXPECT_TRUE(isInView(199));
    press(Qt::Key_Down);
    EXPECT_EQ(focusedText(), u"Start row199"_s);
    press(Qt::Key_PageUp);
    const int page = 199 - focusedText().mid(9).toInt();
    EXPECT_GT(page, 1);
    press(Qt::Key_PageDown);
    EXPECT_EQ(focusedText(), u"Start row199"_s);
    press(Qt::Key_Home);
    EXPECT_EQ(focusedText(), u"Start row0"_s);
    EXPECT_TRUE(isInView(0));
}

namespace
{

/// Draws no ring within a widget, as the style of macOS.
class RinglessStyle : public QProxyStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        if (element != PE_FrameFocusRect)
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
};

} // namespace

TEST_F(RowListTest, ShowsTheFocusOnARowWhateverTheStyle)
{
    RinglessStyle style;
    list->setRows(rowsNumbered(0, 3));
    RowWidget *row = list->row(0);
    row->setStyle(&style);
    QPalette palette = row->palette();
    palette.setColor(QPalette::Highlight, Qt::magenta);
    row->setPalette(palette);
    const auto isRinged = [row] {
        const QImage picture = row->grab().toImage();
        return picture.pixelColor(picture.width() / 2, 2) == QColor(Qt::magenta);
    };
    EXPECT_FALSE(isRinged());
    row->setFocus();
    EXPECT_TRUE(isRinged());
    row->setStyle(nullptr); // which the row outlives
}

TEST_F(RowListTest, TellsWhenTheFocusHasNoRowLeft)
{
    QSignalSpy left(list, &RowList::focusLeft);
    list->setRows(rowsNumbered(0, 2));
    list->setRows({});
    EXPECT_EQ(left.count(), 0) << "the focus was elsewhere";
    list->setRows(rowsNumbered(0, 2));
    button(1, 0)->setFocus();
    list->setRows(rowsNumbered(0, 1));
    EXPECT_EQ(left.count(), 0);
    list->setRows({});
    EXPECT_EQ(left.count(), 1);
    list->setRows(rowsNumbered(0, 2));
    button(1, 0)->setFocus();
    list->hide();
    EXPECT_EQ(left.count(), 2);
}
