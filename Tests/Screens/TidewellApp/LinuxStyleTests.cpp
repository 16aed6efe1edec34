#include "TidewellApp/LinuxStyle.h"

#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/Rows/RowWidget.h"
#include "Screens/Look/DarkPalette.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QStyleOption>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// The least contrast at which a shape is seen.
constexpr double seen = 3;

/// A window with widgets drawn by the style.
class LinuxStyleTest : public testing::Test
{
protected:
    LinuxStyleTest() : layout(new QVBoxLayout(&window)) {}

    template <typename Widget>
    Widget *add(Widget *widget)
    {
        widget->setStyle(&style);
        layout->addWidget(widget);
        return widget;
    }

    void show(const QPalette &palette)
    {
        window.setPalette(palette);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QImage picture(QWidget *widget)
    {
        return window.grab(QRect(widget->mapTo(&window, QPoint()), widget->size())).toImage();
    }

    /// What differs most from the colour, anywhere in that part of the picture.
    static double greatestContrast(const QImage &image, const QRect &part, const QColor &from)
    {
        double greatest = 1;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x)
                greatest = std::max(greatest, Colours::contrast(image.pixelColor(x, y), from));
        }
        return greatest;
    }

    static int pixelsOf(const QColor &colour, const QImage &image)
    {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == colour ? 1 : 0;
        }
        return count;
    }

    /// Outlives the widgets that it draws.
    LinuxStyle style;
    QWidget window;
    QVBoxLayout *layout;
};

} // namespace

TEST_F(LinuxStyleTest, ShowsAnUncheckedBoxInLightAndDark)
{
    auto *box = add(new QCheckBox(u"Disposable mode"_s));
    for (const QPalette &palette : {style.standardPalette(), darkPalette()}) {
        show(palette);
        QStyleOptionButton option;
        option.initFrom(box);
        const QRect indicator = style.subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
        const QImage unchecked = picture(box);
        EXPECT_GE(greatestContrast(unchecked, indicator, palette.color(QPalette::Window)), seen);
        box->setChecked(true);
        const QRect within = indicator.adjusted(6, 6, -6, -6);
        EXPECT_GE(greatestContrast(picture(box), within, palette.color(QPalette::Base)), seen);
        EXPECT_LT(greatestContrast(unchecked, within, palette.color(QPalette::Base)), 1.1);
        box->setChecked(false);
    }
}

TEST_F(LinuxStyleTest, PutsTheRingOfACheckBoxAroundTheBoxWhichStaysToBeSeen)
{
    auto *box = add(new QCheckBox(u"Disposable mode"_s));
    add(new QPushButton(u"next"_s));
    for (QPalette palette : {style.standardPalette(), darkPalette()}) {
        palette.setColor(QPalette::Highlight, Qt::magenta);
        show(palette);
        window.setFocus();
        QStyleOptionButton option;
        option.initFrom(box);
        const QRect indicator = style.subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
        // Without the corners, where the ring's and the box's are beside each other.
        const QRect within = indicator.adjusted(3, 7, -3, -7);
        const QImage plain = picture(box).copy(within);
        box->setFocus();
        const QImage focused = picture(box);
        EXPECT_EQ(pixelsOf(Qt::magenta, focused), pixelsOf(Qt::magenta, focused.copy(indicator)));
        EXPECT_EQ(focused.pixelColor(indicator.center().x(), indicator.top()), QColor(Qt::magenta));
        EXPECT_EQ(focused.pixelColor(indicator.left(), indicator.center().y()), QColor(Qt::magenta));
        EXPECT_EQ(focused.copy(within), plain) << "the box is the same";
        box->clearFocus();
    }
}

TEST_F(LinuxStyleTest, ShowsWhereAFieldEndsInLightAndDark)
{
    auto *field = add(Controls::textField(u"Name"_s, nullptr));
    field->setEnabled(true);
    add(new QPushButton(u"has the focus"_s))->setFocus();
    for (const QPalette &palette : {style.standardPalette(), darkPalette()}) {
        show(palette);
        const QRect leftEdge(0, field->height() / 2, 1, 1);
        EXPECT_GE(greatestContrast(picture(field), leftEdge, palette.color(QPalette::Window)), 1.8);
        EXPECT_GE(greatestContrast(picture(field), leftEdge, palette.color(QPalette::Base)), 1.8);
    }
}

TEST_F(LinuxStyleTest, ShowsTheFocusHoweverItCame)
{
    auto *button = add(new QPushButton(u"Create"_s));
    auto *picker = add(new QComboBox);
    auto *box = add(new QCheckBox(u"Disposable mode"_s));
    auto *field = add(new QLineEdit);
    RowContent content;
    content.name = u"box"_s;
    content.lines = {{u"box"_s, RowContent::TextStyle::headline}};
    auto *row = add(new RowWidget(content, &window));
    for (QPalette palette : {style.standardPalette(), darkPalette()}) {
        palette.setColor(QPalette::Highlight, Qt::magenta);
        show(palette);
        for (QWidget *widget : std::initializer_list<QWidget *>{button, picker, box, field, row}) {
            for (const Qt::FocusReason reason : {Qt::TabFocusReason, Qt::MouseFocusReason, Qt::OtherFocusReason}) {
                window.setFocus();
                EXPECT_EQ(pixelsOf(Qt::magenta, picture(widget)), 0) << widget->metaObject()->className();
                widget->setFocus(reason);
                EXPECT_GE(pixelsOf(Qt::magenta, picture(widget)), 50) << widget->metaObject()->className();
                widget->clearFocus();
            }
        }
    }
}

TEST_F(LinuxStyleTest, FramesAGroupBoxTogetherWithItsTitle)
{
    auto *box = add(new QGroupBox(u"New sandbox"_s));
    auto *row = new QHBoxLayout(box);
    auto *field = new QLineEdit(box);
    row->addWidget(field);
    show(style.standardPalette());
    QStyleOptionGroupBox option;
    option.initFrom(box);
    option.text = box->title();
    const QRect title = style.subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, box);
    const QRect frame = style.subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxFrame, box);
    EXPECT_EQ(frame, box->rect());
    EXPECT_TRUE(frame.contains(title));
    EXPECT_GT(field->y(), title.bottom());
    const QImage image = picture(box);
    EXPECT_EQ(image.pixelColor(title.right() + 5, title.center().y()).rgb(), Colours::pane(window.palette()).rgb());
    EXPECT_GE(greatestContrast(image, title, Colours::pane(window.palette())), Colours::readable);
}

TEST_F(LinuxStyleTest, GivesTheControlsOfARowOneHeight)
{
    const int height = add(new QPushButton(u"Create"_s))->sizeHint().height();
    EXPECT_EQ(add(new QComboBox)->sizeHint().height(), height);
    EXPECT_EQ(add(new QLineEdit)->sizeHint().height(), height);
}

TEST_F(LinuxStyleTest, MakesPlaceholdersLinksAndSelectedTextReadable)
{
    QPalette palettes[] = {style.standardPalette(), darkPalette()};
    palettes[1].setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    palettes[1].setColor(QPalette::Highlight, QColor::fromRgb(0x3daee9));
    palettes[1].setColor(QPalette::HighlightedText, Qt::white);
    palettes[1].setColor(QPalette::Link, Qt::blue);
    for (QPalette &palette : palettes) {
        style.polish(palette);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            EXPECT_GE(Colours::contrast(palette.color(group, QPalette::HighlightedText),
                                        palette.color(group, QPalette::Highlight)),
                      Colours::readable);
            for (const auto role : {QPalette::PlaceholderText, QPalette::Link}) {
                EXPECT_GE(Colours::contrast(palette.color(group, role), palette.color(group, QPalette::Base)),
                          Colours::readable)
                    << role;
            }
        }
    }
}
