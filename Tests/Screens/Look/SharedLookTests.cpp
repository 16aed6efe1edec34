#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/NoteText.h"
#include "Look/Picker.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Screens/Look/DarkPalette.h"
#include "Text/VisibleText.h"

#include <QStyleOptionComboBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

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
