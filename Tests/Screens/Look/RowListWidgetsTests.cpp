// Which rows are widgets, and where the list stands when one of them gets the focus.

#include "Screens/Look/RowListTest.h"
#include "Support/Printing.h"

namespace
{

class RowListWidgetsTest : public RowListTest
{
protected:
    /// The places of the rows that are widgets, "0-5 9-9".
    QString made() const
    {
        QStringList stretches;
        for (int index = 0; index < list->count(); ++index) {
            if (list->madeRow(index) == nullptr)
                continue;
            const int first = index;
            while (index + 1 < list->count() && list->madeRow(index + 1) != nullptr)
                ++index;
            stretches.append(u"%1-%2"_s.arg(first).arg(index));
        }
        return stretches.join(u' ');
    }

    void fill(int rows)
    {
        list->setRows(rowsNumbered(0, rows));
        settle();
        height = list->row(0)->height();
        // As many as are seen, one of them in part, when the first is seen whole.
        page = (list->viewport()->height() + height - 1) / height;
    }

    int place() const { return list->verticalScrollBar()->value(); }
    void scrollTo(int row) { list->verticalScrollBar()->setValue(row * height); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    int height = 0;
    int page = 0;
};

} // namespace

TEST_F(RowListWidgetsTest, AreTheEndsWhatIsInViewWithANeighbourOnEachSideAndForAWhileAPageMore)
{
    fill(5000);
    EXPECT_EQ(made(), u"0-%1 4999-4999"_s.arg(page));
    scrollTo(1000);
    EXPECT_EQ(made(), u"0-0 999-%1 4999-4999"_s.arg(1000 + page));
    scrollTo(1000 + page);
    EXPECT_EQ(made(), u"0-0 1000-%1 4999-4999"_s.arg(1000 + 2 * page)) << "a page above the view";
    scrollTo(1000);
    EXPECT_EQ(made(), u"0-0 999-%1 4999-4999"_s.arg(999 + 2 * page)) << "a page below it";
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum());
    EXPECT_EQ(made(), u"0-0 %1-4999"_s.arg(4999 - page));
}

TEST_F(RowListWidgetsTest, AreTheNeighboursOfTheFocusAlsoOutOfView)
{
    fill(5000);
    button(1000, 0)->setFocus(Qt::MouseFocusReason); // which does not scroll
    EXPECT_EQ(made(), u"0-%1 999-1001 4999-4999"_s.arg(page));
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focusedText(), u"Delete row999"_s);
    scrollTo(0);
    button(2000, 2)->setFocus(Qt::MouseFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(focusedText(), u"Start row2001"_s);
}

TEST_F(RowListWidgetsTest, AreScrolledNoFurtherThanToBeSeenWholeWhenTheyGetTheFocus)
{
    fill(100);
    list->row(50)->focusButton(0, Qt::TabFocusReason);
    EXPECT_NEAR(place(), 51 * height - list->viewport()->height(), 1);
    EXPECT_TRUE(isInView(50));
    list->row(20)->focusButton(0, Qt::BacktabFocusReason);
    EXPECT_NEAR(place(), 20 * height, 1);
    EXPECT_TRUE(isInView(20));
    const int still = place();
    list->row(22)->focusButton(0, Qt::TabFocusReason);
    EXPECT_EQ(place(), still) << "it is in view";
}

TEST_F(RowListWidgetsTest, AreScrolledToByKeysAloneAndNotByWindowsMenusOrThePointer)
{
    fill(100);
    for (const Qt::FocusReason reason :
         {Qt::MouseFocusReason, Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::NoFocusReason}) {
        before->setFocus();
        scrollTo(40);
        list->row(60)->focusButton(0, reason);
        EXPECT_EQ(focusedText(), u"Start row60"_s);
        EXPECT_EQ(place(), 40 * height) << "reason " << reason;
    }
    for (const Qt::FocusReason reason :
         {Qt::TabFocusReason, Qt::BacktabFocusReason, Qt::ShortcutFocusReason, Qt::OtherFocusReason}) {
        before->setFocus();
        scrollTo(40);
        list->row(60)->focusButton(0, reason);
        EXPECT_TRUE(isInView(60)) << "reason " << reason;
    }
}

TEST_F(RowListWidgetsTest, ArePassedByAPageLessTheRowThatStaysInView)
{
    fill(200);
    button(0, 0)->setFocus(Qt::TabFocusReason);
    const int least = list->viewport()->height() / height - 1;
    ASSERT_GT(least, 1);
    press(Qt::Key_PageDown);
    EXPECT_EQ(focusedText(), u"Start row%1"_s.arg(least));
    list->setFixedHeight(height + 10);
    settle();
    press(Qt::Key_PageDown);
    EXPECT_EQ(focusedText(), u"Start row%1"_s.arg(least + 1)) << "one, where no more has room";
    press(Qt::Key_PageUp);
    EXPECT_EQ(focusedText(), u"Start row%1"_s.arg(least));
}

TEST_F(RowListWidgetsTest, OfferTheFormerOfTwoButtonsThatAreAsNearToTheOneWanted)
{
    list->setRows({contentOf(u"row0"_s, true), contentOf(u"row1"_s)});
    button(0, 1)->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Down); // to where "Stop" is disabled between two others
    EXPECT_EQ(focusedText(), u"Start row1"_s);
    press(Qt::Key_Up);
    EXPECT_EQ(focusedText(), u"Stop row0"_s);
}

TEST_F(RowListWidgetsTest, AreKeptInViewWhileHeldAlsoWhereTheyBecomeTheFirst)
{
    fill(50);
    scrollTo(3);
    QPushButton *held = button(5, 2);
    QTest::mousePress(held, Qt::LeftButton);
    QList<RowContent> rows = rowsNumbered(0, 50);
    rows.move(5, 0);
    list->setRows(rows);
    EXPECT_EQ(place(), 0);
    EXPECT_TRUE(isInView(0));
    EXPECT_TRUE(held->isDown());
    QTest::mouseRelease(held, Qt::LeftButton);
}

TEST_F(RowListWidgetsTest, AreAsHighAsTheirButtonsAtLeastWithEightPointsAround)
{
    RowContent content = contentOf(u"box"_s);
    content.lines = {{u"one line"_s, RowContent::TextStyle::caption}};
    list->setRows({content});
    EXPECT_EQ(list->row(0)->height(), QPushButton(u"Start"_s).sizeHint().height() + 2 * 8);
}
