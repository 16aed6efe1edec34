#include "Look/NoteText.h"

#include "Look/Colours.h"
#include "Look/LogBox.h"
#include "Look/Typography.h"

#include <QApplication>
#include <QScrollBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// A note in a window that leaves it its own height.
class NoteTextTest : public testing::Test
{
protected:
    NoteTextTest()
    {
        window.resize(400, 400);
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(note);
        layout->addStretch();
        window.show();
    }

    double lines() const { return static_cast<double>(note->height()) / note->fontMetrics().lineSpacing(); }

    QWidget window;
    NoteText *note = new NoteText(Typography::callout(), Colours::secondary, &window);
};

} // namespace

TEST_F(NoteTextTest, ScrollsFromTheSeventhLineOnAndIsReachedByKeyboardThen)
{
    note->setText(u"1\n2\n3\n4\n5\n6"_s);
    EXPECT_NEAR(lines(), 6, 0.1);
    EXPECT_EQ(note->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(note->focusPolicy(), Qt::ClickFocus);
    EXPECT_EQ(note->viewport()->width(), note->width());
    note->setText(u"1\n2\n3\n4\n5\n6\n7"_s);
    EXPECT_NEAR(lines(), 6, 0.1);
    EXPECT_EQ(note->focusPolicy(), Qt::StrongFocus);
    QApplication::processEvents();
    ASSERT_TRUE(note->verticalScrollBar()->isVisible());
    const int left = note->verticalScrollBar()->mapTo(note, QPoint()).x();
    EXPECT_EQ(left - note->viewport()->geometry().right() - 1, 6) << "between text and scroll bar";
    note->setText(u"1"_s);
    EXPECT_NEAR(lines(), 1, 0.1);
    EXPECT_EQ(note->focusPolicy(), Qt::ClickFocus);
    EXPECT_EQ(note->viewport()->width(), note->width());
}

TEST_F(NoteTextTest, GrowsWithTheLinesThatANarrowerWindowMakesOfIt)
{
    note->setText(u"some words of a note that has room in one line"_s);
    EXPECT_NEAR(lines(), 1, 0.1);
    window.resize(window.width() / 2, window.height());
    QApplication::processEvents();
    EXPECT_NEAR(lines(), 2, 0.1);
    window.resize(400, window.height());
    QApplication::processEvents();
    EXPECT_NEAR(lines(), 1, 0.1);
}

TEST_F(NoteTextTest, FollowsItsType)
{
    note->setText(u"note"_s);
    const int before = note->height();
    QFont large = note->font();
    large.setPixelSize(3 * QFontInfo(large).pixelSize());
    note->setFont(large);
    EXPECT_GT(note->height(), 2 * before);
    EXPECT_NEAR(lines(), 1, 0.1);
}

TEST(LogBox, BeginsItsTextSixPointsBesideAndThreeBelowItsFrame)
{
    LogBox box(u"Log"_s, 90, [] { return u"line"_s; });
    box.resize(400, 90);
    box.show();
    const QRect caret = box.cursorRect(QTextCursor(box.document()));
    EXPECT_EQ(box.viewport()->mapTo(&box, caret.topLeft()), QPoint(2 + 3 + 3, 2 + 3));
    EXPECT_EQ(box.viewport()->geometry().right(), box.width() - 1 - 2 - 3);
    EXPECT_EQ(box.height(), 90);
    EXPECT_EQ(box.accessibleName(), u"Log"_s);
}
