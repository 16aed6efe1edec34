#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/Picker.h"
#include "Look/PlainLabel.h"
#include "Look/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Support/Waiting.h"
#include "Text/VisibleText.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor::fromRgb(0x202020));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Base, QColor::fromRgb(0x181818));
    palette.setColor(QPalette::Text, Qt::white);
    return palette;
}

QString selectAllAndCopy(QPlainTextEdit &box)
{
    box.selectAll();
    box.copy();
    return QGuiApplication::clipboard()->text();
}

} // namespace

TEST(Typography, OrdersItsSizesAsMacOSDoes)
{
    const auto pixels = [](const QFont &font) { return QFontInfo(font).pixelSize(); };
    EXPECT_EQ(pixels(Typography::headline()), pixels(Typography::body()));
    EXPECT_TRUE(Typography::headline().bold());
    EXPECT_LT(pixels(Typography::callout()), pixels(Typography::body()));
    EXPECT_LT(pixels(Typography::caption()), pixels(Typography::callout()));
    EXPECT_LE(pixels(Typography::smallestCaption()), pixels(Typography::caption()));
    EXPECT_EQ(pixels(Typography::monospaced(11)), 11);
    EXPECT_TRUE(QFontInfo(Typography::monospaced(13)).fixedPitch());
}

TEST(VisibleText, WritesOutWhatHasNoShape)
{
    EXPECT_EQ(VisibleText::oneLine(u"a\u202eb\u200bc\x1b[0m"_s), u"a⟨U+202E⟩b⟨U+200B⟩c⟨U+001B⟩[0m"_s);
    EXPECT_EQ(VisibleText::oneLine(u"one\ntwo\tthree"_s), u"one two three"_s);
    EXPECT_EQ(VisibleText::oneLine(u"héllo 日本 😀"_s), u"héllo 日本 😀"_s);
}

TEST(VisibleText, WritesOutWhatHasNoShapeBeyondTheFirstPlaneAndHalvesOfCharacters)
{
    EXPECT_EQ(VisibleText::oneLine(u"box\U000E0041🐳"_s), u"box⟨U+E0041⟩🐳"_s);
    EXPECT_EQ(VisibleText::oneLine(u"a"_s + QChar(0xd83d)), u"a\ufffd"_s);
}

TEST(VisibleText, GivesToolTipsNoMarkup)
{
    EXPECT_EQ(VisibleText::toolTip(u"<b>&"_s), u"<span>&lt;b&gt;&amp;</span>"_s);
    EXPECT_LT(VisibleText::toolTip(QString(100000, u'x')).size(), 1100);
}

TEST(VisibleText, CutsALongTextWithAnEllipsisAndHalvesNoCharacter)
{
    EXPECT_EQ(VisibleText::elidedEnd(u"abcd"_s, 4), u"abcd"_s);
    EXPECT_EQ(VisibleText::elidedEnd(u"abcde"_s, 4), u"abcd…"_s);
    EXPECT_EQ(VisibleText::elidedEnd(u"abc🐳e"_s, 4), u"abc…"_s);
    EXPECT_EQ(VisibleText::elidedEnd(u"ab🐳e"_s, 4), u"ab🐳…"_s);
    EXPECT_EQ(VisibleText::elidedMiddle(u"abcd"_s, 4), u"abcd"_s);
    EXPECT_EQ(VisibleText::elidedMiddle(u"abcdef"_s, 4), u"ab…ef"_s);
    EXPECT_EQ(VisibleText::elidedMiddle(u"a🐳cd🐳f"_s, 4), u"a…f"_s);
    const QString lone(6, QChar(0xdc33));
    EXPECT_EQ(VisibleText::elidedMiddle(lone, 4), lone.first(2) + u'…' + lone.first(2));
}

TEST(VisibleText, IsCutBetweenCharactersWhereverItIsShown)
{
    const QString whales = u"x"_s + u"🐳"_s.repeated(3000);
    EXPECT_TRUE(VisibleText::toolTip(whales).endsWith(u"🐳…</span>"_s));
    for (const auto fit : {PlainLabel::Fit::wrap, PlainLabel::Fit::elideEnd, PlainLabel::Fit::elideMiddle}) {
        PlainLabel label(whales, Typography::body(), Colours::primary, fit);
        EXPECT_TRUE(label.text().contains(u"🐳…"_s));
        EXPECT_FALSE(label.text().contains(u'\ufffd'));
        label.setOwnText(whales);
        EXPECT_TRUE(label.text().endsWith(u"🐳…"_s));
    }
    QWidget window;
    NoteText note(Typography::body(), Colours::primary, &window);
    note.setText(whales);
    EXPECT_TRUE(note.accessibleName().endsWith(u"🐳…"_s));
}

TEST(PlainLabel, NeverReadsMarkup)
{
    const PlainLabel label(u"<b>bold</b>"_s, Typography::body(), Colours::primary, PlainLabel::Fit::wrap);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(ByName::nameOf(&label), u"<b>bold</b>"_s);
}

TEST(PlainLabel, NeverWidensItsWindow)
{
    for (const auto fit : {PlainLabel::Fit::wrap, PlainLabel::Fit::elideEnd, PlainLabel::Fit::elideMiddle}) {
        for (const QString &text : {QString(1000000, u'x'), u"word "_s.repeated(200000)}) {
            QWidget window;
            QVBoxLayout layout(&window);
            auto *label = new PlainLabel(text, Typography::body(), Colours::primary, fit, &window);
            layout.addWidget(label);
            window.resize(300, 200);
            window.show();
            EXPECT_EQ(window.width(), 300);
            EXPECT_LE(label->width(), 300);
        }
    }
}

TEST(PlainLabel, ShowsAShortTextWholeAndALongOneCut)
{
    PlainLabel label(u"short"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd);
    EXPECT_GE(label.sizeHint().width(), label.fontMetrics().horizontalAdvance(u"short"_s));
    PlainLabel path(u"/first/"_s + QString(5000, u'x') + u"/last"_s, Typography::body(), Colours::primary,
                    PlainLabel::Fit::elideMiddle);
    EXPECT_TRUE(path.text().startsWith(u"/first/"_s));
    EXPECT_TRUE(path.text().endsWith(u"/last"_s));
    EXPECT_LT(path.text().size(), 1100);
}

TEST(PlainLabel, FollowsASwitchOfLightAndDark)
{
    QWidget window;
    PlainLabel label(u"x"_s, Typography::body(), Colours::red, PlainLabel::Fit::wrap, &window);
    EXPECT_EQ(label.palette().color(QPalette::WindowText), Colours::red(window.palette()));
    window.setPalette(darkPalette());
    EXPECT_EQ(label.palette().color(QPalette::WindowText), Colours::red(darkPalette()));
    EXPECT_NE(Colours::red(darkPalette()), Colours::red(QPalette(Qt::white)));
}

TEST(PlainLabel, AsksForNoMoreHeightThanItsWidthNeeds)
{
    QWidget window;
    QVBoxLayout layout(&window);
    auto *label = new PlainLabel(u"a caption of some twenty words "_s.repeated(4), Typography::caption(),
                                 Colours::secondary, PlainLabel::Fit::wrap, &window);
    layout.addWidget(label);
    const int line = label->fontMetrics().height();
    EXPECT_LT(layout.minimumSize().height(), 2 * line + 2 * layout.contentsMargins().top());
    window.resize(label->fontMetrics().horizontalAdvance(label->text()) / 2, 300);
    window.show();
    EXPECT_GE(label->height(), 2 * line);
}

TEST(PlainLabel, IsDimmedWhileDisabled)
{
    QWidget window;
    QPalette palette = darkPalette();
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor::fromRgb(0x606060));
    window.setPalette(palette);
    PlainLabel label(u"Machine"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd, &window);
    EXPECT_EQ(label.palette().color(QPalette::WindowText), Qt::white);
    label.setEnabled(false);
    EXPECT_EQ(label.palette().color(QPalette::WindowText), QColor::fromRgb(0x606060));
}

TEST(TextField, IsNamedByItsPlaceholder)
{
    QWidget window;
    const QLineEdit &field = *Controls::textField(u"Name (e.g. scratch)"_s, &window);
    EXPECT_EQ(field.placeholderText(), u"Name (e.g. scratch)"_s);
    EXPECT_EQ(ByName::nameOf(&field), u"Name (e.g. scratch)"_s);
}

TEST(TextField, ShowsItsPlaceholderWhereADarkThemeForgotThatColour)
{
    QWidget window;
    const QLineEdit &field = *Controls::textField(u"x"_s, &window);
    QPalette dark = darkPalette();
    dark.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    window.setPalette(dark);
    EXPECT_GT(field.palette().color(QPalette::PlaceholderText).lightnessF(), 0.5F);
    QPalette light(Qt::lightGray);
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    window.setPalette(light);
    EXPECT_EQ(field.palette().color(QPalette::PlaceholderText), QColor(0, 0, 0, 128));
}

TEST(TextField, LeavesAThemeItsOwnPlaceholderColour)
{
    QWidget window;
    const QLineEdit &field = *Controls::textField(u"x"_s, &window);
    QPalette dark = darkPalette();
    dark.setColor(QPalette::PlaceholderText, QColor(255, 255, 255, 64));
    window.setPalette(dark);
    EXPECT_EQ(field.palette().color(QPalette::PlaceholderText), QColor(255, 255, 255, 64));
}

TEST(Picker, EndsAChoiceThatDoesNotFitWithAnEllipsis)
{
    class OpenPicker : public Picker
    {
    public:
        using Picker::initStyleOption;
        using Picker::Picker;
    };
    OpenPicker picker(u"Machine"_s, Picker::Label::visible, nullptr);
    picker.addItems({u"box"_s, u"a-name-that-goes-on-"_s.repeated(5)});
    picker.resize(200, picker.sizeHint().height());
    QStyleOptionComboBox option;
    picker.initStyleOption(&option);
    EXPECT_EQ(option.currentText, u"box"_s);
    picker.setCurrentIndex(1);
    picker.initStyleOption(&option);
    EXPECT_TRUE(option.currentText.endsWith(u'…')) << option.currentText.toStdString();
    EXPECT_LT(option.fontMetrics.horizontalAdvance(option.currentText), picker.width());
    EXPECT_EQ(picker.currentText().size(), 100);
}

TEST(StatusDot, SaysItsStateInWords)
{
    StatusDot dot(12);
    dot.setState(StatusDot::Colour::green, u"OrbStack running"_s);
    EXPECT_EQ(ByName::nameOf(&dot), u"OrbStack running"_s);
    EXPECT_EQ(dot.size(), QSize(12, 12));
    const QImage picture = dot.grab().toImage();
    const QColor middle = picture.pixelColor(picture.width() / 2, picture.height() / 2);
    EXPECT_GT(middle.green(), middle.red());
    EXPECT_GT(middle.green(), middle.blue());
}

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
    QElapsedTimer timer;
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
