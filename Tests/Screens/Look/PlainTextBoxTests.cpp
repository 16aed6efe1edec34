#include "Look/Colours.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Screens/Look/DarkPalette.h"
#include "Support/ProcessorTimer.h"
#include "Support/Waiting.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

QString selectAllAndCopy(QPlainTextEdit &box)
{
    box.selectAll();
    box.copy();
    return QGuiApplication::clipboard()->text();
}

} // namespace

TEST(LogBox, ShowsAGrowingTextOncePerFrameAndFollowsItsEnd)
{
    QString text = u"start\n"_s;
    int asked = 0;
    LogBox box(u"Log"_s, 90, [&] {
        ++asked;
        return text;
    });
    box.resize(400, 90);
    box.show();
    EXPECT_EQ(box.shownText(), u"start\n"_s);
    EXPECT_EQ(asked, 1);
    for (int line = 0; line < 1000; ++line) {
        text += u"line %1\n"_s.arg(line);
        box.reload();
    }
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(waitUntil([&] { return box.shownText() == text; }));
    EXPECT_EQ(asked, 2);
    EXPECT_GT(box.verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(box.verticalScrollBar()->value(), box.verticalScrollBar()->maximum());
}

TEST(LogBox, KeepsSelectionAndPlaceWhileItGrows)
{
    QString text = u"line\n"_s.repeated(500);
    LogBox box(u"Log"_s, 90, [&] { return text; });
    box.resize(400, 90);
    box.show();
    box.moveCursor(QTextCursor::Start);
    box.moveCursor(QTextCursor::EndOfLine, QTextCursor::KeepAnchor);
    box.verticalScrollBar()->setValue(3);
    text += u"more\n"_s;
    box.reload();
    EXPECT_TRUE(waitUntil([&] { return box.shownText() == text; }));
    EXPECT_EQ(box.textCursor().selectedText(), u"line"_s);
    EXPECT_EQ(box.verticalScrollBar()->value(), 3);
}

TEST(LogBox, ShowsSixWholeLinesInItsNinetyPoints)
{
    LogBox box(u"Log"_s, 90, [] { return u"line\n"_s.repeated(20); });
    box.resize(400, 90);
    box.show();
    const int shown = 90 / box.fontMetrics().lineSpacing();
    ASSERT_GE(shown, 6);
    EXPECT_EQ(box.verticalScrollBar()->maximum(), box.blockCount() - shown);
}

TEST(LogBox, KeepsItsScrollBarWithinTheRoundedPane)
{
    LogBox box(u"Log"_s, 90, [] { return u"line\n"_s.repeated(20); });
    box.resize(400, 90);
    box.show();
    const QScrollBar *bar = box.verticalScrollBar();
    ASSERT_TRUE(bar->isVisible());
    EXPECT_LT(bar->mapTo(&box, bar->rect().bottomRight()).x(), box.rect().right());
    EXPECT_LT(bar->mapTo(&box, bar->rect().bottomRight()).y(), box.rect().bottom());
}

TEST(LogBox, HasAnEdgeThatIsSeenInTheDark)
{
    QWidget window;
    window.setPalette(darkPalette());
    window.resize(400, 200);
    LogBox box(u"Log"_s, 90, [] { return u"line"_s; }, &window);
    box.setGeometry(20, 20, 300, 90);
    window.show();
    const QImage picture = window.grab().toImage();
    const auto lightness = [&picture](int x) { return picture.pixelColor(x, 65).lightnessF(); };
    EXPECT_GT(lightness(20), lightness(10) + 0.05F);
    EXPECT_LT(lightness(30), lightness(10));
}

TEST(LogBox, StandsOnBlackAtSixPercentWithinRoundedCorners)
{
    QWidget window;
    window.resize(400, 200);
    LogBox box(u"Log"_s, 90, [] { return u"line"_s; }, &window);
    box.setGeometry(20, 20, 300, 90);
    window.show();
    const QImage picture = window.grab().toImage().copy(box.geometry());
    const QColor around = window.palette().color(QPalette::Window);
    const QColor ground = picture.pixelColor(150, 80);
    EXPECT_NEAR(ground.red(), around.red() * 0.94, 1.5);
    EXPECT_NEAR(ground.blue(), around.blue() * 0.94, 1.5);
    for (const QPoint corner : {QPoint(0, 0), QPoint(299, 0), QPoint(0, 89), QPoint(299, 89)})
        EXPECT_EQ(picture.pixelColor(corner), around);
    EXPECT_EQ(picture.pixelColor(7, 0), ground) << "the corner ends six points from the edge";
    EXPECT_NE(picture.pixelColor(1, 0), ground);
}

TEST(LogBox, WritesInMonospacedTypeOfSize11)
{
    const LogBox box(u"Log"_s, 90, [] { return u"line"_s; });
    EXPECT_EQ(box.font(), Typography::monospaced(11));
}

TEST(LogBox, ShowsATextThatLostItsFront)
{
    QString text = u"old\n"_s.repeated(100);
    LogBox box(u"Log"_s, 90, [&] { return text; });
    text = text.sliced(40) + u"new\n"_s;
    box.reload();
    EXPECT_TRUE(waitUntil([&] { return box.shownText() == text; }));
    EXPECT_EQ(box.toPlainText(), text);
}

TEST(LogBox, IsHiddenWhileEmptyWhereAsked)
{
    QWidget window;
    QString text;
    LogBox box(u"Log"_s, 90, [&] { return text; }, &window);
    window.show();
    EXPECT_TRUE(box.isVisible());
    box.hideWhileEmpty();
    EXPECT_FALSE(box.isVisible());
    text = u"x"_s;
    box.reload();
    EXPECT_TRUE(waitUntil([&] { return box.isVisible(); }));
}

TEST(LogBox, ShowsTheFirstTextAtOnce)
{
    QString text;
    LogBox box(u"Log"_s, 90, [&] { return text; });
    text = u"first\n"_s;
    box.reload();
    EXPECT_EQ(box.shownText(), u"first\n"_s);
}

TEST(NoteText, IsHiddenWhileEmpty)
{
    QWidget window;
    NoteText note(Typography::body(), Colours::red, &window);
    window.show();
    EXPECT_FALSE(note.isVisible());
    note.setText(u"an error"_s);
    EXPECT_TRUE(note.isVisible());
    note.setText({});
    EXPECT_FALSE(note.isVisible());
}

TEST(PlainTextBox, WaitsWithACarriageReturnForWhatComesBehindIt)
{
    QString text = u"one\r"_s;
    LogBox box(u"Log"_s, 90, [&text] { return text; }, nullptr);
    EXPECT_EQ(box.shownText(), u"one"_s);
    text = u"one\r\ntwo\r"_s;
    box.reload();
    EXPECT_TRUE(waitUntil([&box] { return box.shownText() == u"one\r\ntwo"_s; }));
}

TEST(PlainTextBox, CopiesALineOfAnyLengthAsOne)
{
    QString text = QString(9001, u'x') + u"\n<b>second</b>\n\n"_s + u"😀"_s.repeated(3000);
    LogBox box(u"Log"_s, 90, [&] { return text; });
    EXPECT_EQ(selectAllAndCopy(box), text);
    EXPECT_GT(box.blockCount(), 6);
    QTextCursor part = box.textCursor();
    part.setPosition(1990);
    part.setPosition(2021, QTextCursor::KeepAnchor);
    box.setTextCursor(part);
    box.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString(30, u'x'));
}

TEST(PlainTextBox, GrowsWithinALongLineAndAcrossItsEnds)
{
    QString text;
    LogBox box(u"Log"_s, 90, [&] { return text; });
    for (const QString &piece : {QString(1500, u'a'), QString(1500, u'b'), u"\r"_s, u"\nc\r"_s, u"d"_s}) {
        text += piece;
        box.showText(text);
    }
    EXPECT_EQ(selectAllAndCopy(box), QString(1500, u'a') + QString(1500, u'b') + u"\nc\nd"_s);
}

TEST(PlainTextBox, TakesTwoHundredThousandCharactersInOneLine)
{
    const QString text(200000, u'x');
    LogBox box(u"Log"_s, 90, [] { return QString(); });
    box.resize(600, 90);
    box.show();
    ProcessorTimer timer;
    timer.start();
    box.showText(text);
    QCoreApplication::processEvents();
    // Generous; it takes about 40 ms.
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(box.shownText(), text);
}

TEST(NoteText, IsAsHighAsItsTextUpToSixLines)
{
    QWidget window;
    window.resize(400, 400);
    QVBoxLayout layout(&window);
    auto *note = new NoteText(Typography::callout(), Colours::secondary, &window);
    layout.addWidget(note);
    layout.addStretch();
    window.show();
    const int line = note->fontMetrics().lineSpacing();
    note->setText(u"one"_s);
    EXPECT_NEAR(note->height(), line, 2);
    note->setText(u"one\ntwo"_s);
    EXPECT_NEAR(note->height(), 2 * line, 2);
    note->setText(u"many\n"_s.repeated(100000));
    EXPECT_NEAR(note->height(), 6 * line, 2);
    EXPECT_EQ(note->verticalScrollBar()->value(), 0);
    EXPECT_EQ(note->focusPolicy(), Qt::StrongFocus);
    note->setText(QString(1000000, u'x'));
    EXPECT_EQ(window.width(), 400);
    EXPECT_NEAR(note->height(), 6 * line, 2);
    note->setText(u"<b>one</b>"_s);
    EXPECT_EQ(ByName::nameOf(note), u"<b>one</b>"_s);
    EXPECT_EQ(note->toPlainText(), u"<b>one</b>"_s);
    EXPECT_NEAR(note->height(), line, 2);
}

TEST(NoteText, FollowsASwitchOfLightAndDark)
{
    QWidget window;
    NoteText note(Typography::callout(), Colours::orange, &window);
    window.setPalette(darkPalette());
    EXPECT_EQ(note.palette().color(QPalette::Text), Colours::orange(darkPalette()));
}
