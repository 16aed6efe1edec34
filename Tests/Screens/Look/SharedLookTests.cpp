#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/NoteText.h"
#include "Look/Picker.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Text/VisibleText.h"

#include <QApplication>
#include <QDialog>
#include <QSet>
#include <QStyleOptionComboBox>

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

TEST(Typography, KeepsTheProportionsOfMacOSAtEverySizeAndStaysReadable)
{
    const QFont before = QApplication::font();
    struct Sizes {
        int body;
        int callout;
        int caption;
    };
    for (const Sizes &sizes : {Sizes{13, 12, 10}, Sizes{26, 24, 20}, Sizes{11, 10, 10}}) {
        QFont font = before;
        font.setPixelSize(sizes.body);
        QApplication::setFont(font);
        EXPECT_EQ(Typography::body().pixelSize(), sizes.body);
        EXPECT_EQ(Typography::headline().pixelSize(), sizes.body);
        EXPECT_EQ(Typography::callout().pixelSize(), sizes.callout);
        EXPECT_EQ(Typography::caption().pixelSize(), sizes.caption);
        EXPECT_EQ(Typography::smallestCaption().pixelSize(), sizes.caption);
        EXPECT_EQ(Typography::monospaced(12).pixelSize(), 12) << "as large as it was asked for";
    }
    QApplication::setFont(before);
    EXPECT_FALSE(Typography::callout().bold());
    EXPECT_FALSE(Typography::caption().bold());
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

TEST(Button, LeavesReturnToWhatHasTheFocusAndItsLabelRoom)
{
    QDialog window; // where a button takes it unless told otherwise
    for (const QString &label : {u"OK"_s, u"Install OrbStack with a long label"_s}) {
        const QPushButton &button = *Controls::button(label, u"what it does"_s, &window);
        EXPECT_FALSE(button.autoDefault());
        EXPECT_EQ(ByName::nameOf(&button), label);
        EXPECT_EQ(ByName::descriptionOf(&button), u"what it does"_s);
#ifndef Q_OS_MACOS
        EXPECT_EQ(button.minimumWidth(), std::max(80, button.fontMetrics().horizontalAdvance(label) + 28));
#endif
    }
}

TEST(StatusDot, ShowsEachStateInTheColourThatItIsCalled)
{
    const auto middle = [](StatusDot::Colour colour) {
        StatusDot dot(12);
        dot.setState(colour, u"state"_s);
        const QImage picture = dot.grab().toImage();
        return picture.pixelColor(picture.width() / 2, picture.height() / 2);
    };
    EXPECT_LT(middle(StatusDot::Colour::grey).hslSaturationF(), 0.1F);
    EXPECT_EQ(middle(StatusDot::Colour::grey), QColor::fromRgb(0x8e8e93));
    struct Hue {
        StatusDot::Colour colour;
        int hue;
        QRgb exactly;
    };
    for (const auto &[colour, hue, exactly] :
         {Hue{StatusDot::Colour::red, 3, 0xff3b30}, Hue{StatusDot::Colour::orange, 35, 0xff9500},
          Hue{StatusDot::Colour::yellow, 48, 0xffcc00}, Hue{StatusDot::Colour::green, 135, 0x34c759}}) {
        EXPECT_NEAR(middle(colour).hslHue(), hue, 5);
        EXPECT_GT(middle(colour).hslSaturationF(), 0.5F);
        EXPECT_EQ(middle(colour), QColor::fromRgb(exactly));
    }
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

TEST(StatusDot, HasARimALittleDarkerThanItself)
{
    StatusDot dot(100); // so large that a pixel of its rim is nothing else
    dot.setState(StatusDot::Colour::yellow, u"OrbStack starting…"_s);
    const QImage picture = dot.grab().toImage();
    const QColor rim = picture.pixelColor(0, picture.height() / 2);
    EXPECT_GE(rim.value(), 204) << "255 by 1.25";
    EXPECT_LE(rim.value(), 205);
    EXPECT_NEAR(rim.hsvHue(), QColor::fromRgb(0xffcc00).hsvHue(), 3);
    EXPECT_EQ(dot.toolTip(), u"OrbStack starting…"_s);
    QSet<QRgb> colours;
    for (int x = 0; x < picture.width(); ++x)
        colours.insert(picture.pixel(x, 5));
    EXPECT_GT(colours.size(), 5) << "its edge is smooth";
}
