#include "TidewellApp/LinuxStyle.h"

#include "Look/Colours.h"
#include "Look/RoundedFrame.h"

#include <QGroupBox>
#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QSet>
#include <QStyleOption>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace
{

const QRect area(0, 0, 60, 40);

/// The style by itself, asked for its measures and drawing into pictures.
class LinuxStyleMeasures : public testing::Test
{
protected:
    LinuxStyleMeasures() { palette.setColor(QPalette::Highlight, Qt::magenta); }

    static QImage picture(const std::function<void(QPainter &)> &draw)
    {
        QImage image(area.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        draw(painter);
        painter.end();
        return image;
    }

    QImage picture(QStyle::PrimitiveElement element, const QStyleOption &option) const
    {
        return picture([&](QPainter &painter) { style.drawPrimitive(element, &option, &painter, nullptr); });
    }

    template <typename Option>
    Option optionOf(QStyle::State state) const
    {
        Option option;
        option.rect = area;
        option.palette = palette;
        option.state = state;
        return option;
    }

    /// As it is used: through the interface of all styles.
    const std::unique_ptr<QStyle> owned = std::make_unique<LinuxStyle>();
    QStyle &style = *owned;
    const QStyle &base = *static_cast<QProxyStyle &>(style).baseStyle();
    QPalette palette = style.standardPalette();
};

} // namespace

TEST_F(LinuxStyleMeasures, RoundAFieldByFourPointsWithItsRingWithin)
{
    auto option = optionOf<QStyleOptionFrame>(QStyle::State_Enabled);
    option.lineWidth = 1;
    const QColor ground = palette.color(QPalette::Base);
    EXPECT_EQ(picture(QStyle::PE_PanelLineEdit, option), picture([&](QPainter &painter) {
                  RoundedFrame::draw(painter, area, 4, Colours::line(palette, 0.4F), ground);
              }));
    option.state.setFlag(QStyle::State_HasFocus);
    EXPECT_EQ(picture(QStyle::PE_PanelLineEdit, option), picture([&](QPainter &painter) {
                  RoundedFrame::draw(painter, area, 4, Colours::line(palette, 0.4F), ground);
                  RoundedFrame::drawRing(painter, area, 4, 2, palette);
              }));
    option.state = QStyle::State_None;
    EXPECT_EQ(picture(QStyle::PE_PanelLineEdit, option), picture([&](QPainter &painter) {
                  RoundedFrame::draw(painter, area, 4, Colours::line(palette, 0.25F), ground);
              }));
}

TEST_F(LinuxStyleMeasures, LeaveAFieldWithoutAFrameToWhatItIsAPartOf)
{
    auto option = optionOf<QStyleOptionFrame>(QStyle::State_Enabled);
    option.lineWidth = 0;
    EXPECT_EQ(picture(QStyle::PE_PanelLineEdit, option), picture([&](QPainter &painter) {
                  base.drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, nullptr);
              }));
}

TEST_F(LinuxStyleMeasures, DrawABoxOfSixteenPointsInTheMiddleOfItsRoom)
{
    QRect box(0, 0, 16, 16);
    box.moveCenter(area.center());
    const QColor field = palette.color(QPalette::Base);
    const auto plain = [&](float line, const QColor &ground) {
        return picture(
            [&](QPainter &painter) { RoundedFrame::draw(painter, box, 4, Colours::line(palette, line), ground); });
    };
    const auto drawn = [&](QStyle::State state) {
        return picture(QStyle::PE_IndicatorCheckBox, optionOf<QStyleOptionButton>(state));
    };
    EXPECT_EQ(drawn(QStyle::State_Enabled | QStyle::State_Off), plain(0.7F, field));
    EXPECT_EQ(drawn(QStyle::State_Off), plain(0.3F, field));
    EXPECT_EQ(drawn(QStyle::State_Enabled | QStyle::State_Off | QStyle::State_Sunken),
              plain(0.7F, Colours::mixed(palette.color(QPalette::Text), field, 0.15F)));
}

TEST_F(LinuxStyleMeasures, MarkABoxByATickOrALineOfTwoPoints)
{
    const auto inked = [this](QStyle::State state) {
        const QImage marked =
            picture(QStyle::PE_IndicatorCheckBox, optionOf<QStyleOptionButton>(QStyle::State_Enabled | state));
        const QImage unmarked = picture(QStyle::PE_IndicatorCheckBox,
                                        optionOf<QStyleOptionButton>(QStyle::State_Enabled | QStyle::State_Off));
        QRect place;
        for (int y = 0; y < marked.height(); ++y) {
            for (int x = 0; x < marked.width(); ++x) {
                if (marked.pixel(x, y) != unmarked.pixel(x, y))
                    place |= QRect(x, y, 1, 1);
            }
        }
        return place;
    };
    const QRect line = inked(QStyle::State_NoChange);
    EXPECT_EQ(line, QRect(25, 19, 10, 2));
    const QRect tick = inked(QStyle::State_On);
    EXPECT_EQ(tick.size(), QSize(10, 10));
}

TEST_F(LinuxStyleMeasures, DrawASmoothTickAndLeaveThePainterAsItWas)
{
    const QPen pen(Qt::green, 5);
    QSet<QRgb> shades;
    const QImage ticked = picture([&](QPainter &painter) {
        painter.setPen(pen);
        const auto option = optionOf<QStyleOptionButton>(QStyle::State_Enabled | QStyle::State_On);
        style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, nullptr);
        EXPECT_EQ(painter.pen(), pen);
        EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
    });
    for (int y = 16; y < 24; ++y) {
        for (int x = 26; x < 34; ++x)
            shades.insert(ticked.pixel(x, y));
    }
    EXPECT_GT(shades.size(), 4) << "not only ink and ground";
    EXPECT_FALSE(shades.contains(QColor(Qt::green).rgb()));
}

TEST_F(LinuxStyleMeasures, ChooseReadableColoursForEachGroupByItself)
{
    const QColor dark = QColor::fromRgb(0x202020);
    const QColor deepBlue = QColor::fromRgb(0x003366);
    const QColor skyBlue = QColor::fromRgb(0x3daee9);
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
        palette.setColor(QPalette::Inactive, role, dark);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
        palette.setColor(QPalette::Inactive, role, Qt::white);
    const auto setSelection = [this](QPalette::ColorGroup group, const QColor &ground, const QColor &text) {
        palette.setColor(group, QPalette::Highlight, ground);
        palette.setColor(group, QPalette::HighlightedText, text);
    };
    setSelection(QPalette::Active, deepBlue, Qt::black);
    setSelection(QPalette::Inactive, skyBlue, Qt::white);
    palette.setColor(QPalette::Active, QPalette::Link, QColor::fromRgb(0xaaaaff));
    palette.setColor(QPalette::Inactive, QPalette::Link, Qt::blue);
    for (const auto group : {QPalette::Active, QPalette::Inactive})
        palette.setColor(group, QPalette::PlaceholderText, palette.color(group, QPalette::Base));
    QPalette polished = palette;
    style.polish(polished);
    EXPECT_EQ(polished.color(QPalette::Active, QPalette::HighlightedText), QColor(Qt::white));
    EXPECT_EQ(polished.color(QPalette::Inactive, QPalette::HighlightedText), QColor(Qt::black));
    EXPECT_EQ(polished.color(QPalette::Active, QPalette::Link), QColor::fromRgb(0x0b5cad));
    EXPECT_EQ(polished.color(QPalette::Inactive, QPalette::Link), QColor::fromRgb(0x6cb6ff));
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setCurrentColorGroup(group);
        EXPECT_EQ(polished.color(group, QPalette::PlaceholderText), Colours::placeholder(palette)) << group;
    }
    setSelection(QPalette::Active, deepBlue, Qt::yellow);
    style.polish(palette);
    EXPECT_EQ(palette.color(QPalette::Active, QPalette::HighlightedText), QColor(Qt::yellow)) << "it was readable";
}

TEST_F(LinuxStyleMeasures, RingWhatHasTheFocusByTwoPoints)
{
    const auto option = optionOf<QStyleOptionFocusRect>(QStyle::State_Enabled);
    EXPECT_EQ(picture(QStyle::PE_FrameFocusRect, option),
              picture([&](QPainter &painter) { RoundedFrame::drawRing(painter, area, 4, 2, palette); }));
}

TEST_F(LinuxStyleMeasures, RingACheckBoxAroundItsIndicator)
{
    const auto drawn = [&](QPainter &painter, QStyle::State state) {
        const auto option = optionOf<QStyleOptionButton>(state);
        style.drawControl(QStyle::CE_CheckBox, &option, &painter, nullptr);
    };
    const QStyle::State state = QStyle::State_Enabled | QStyle::State_Off;
    EXPECT_EQ(picture([&](QPainter &painter) { drawn(painter, state | QStyle::State_HasFocus); }),
              picture([&](QPainter &painter) {
                  drawn(painter, state);
                  const auto option = optionOf<QStyleOptionButton>(state);
                  RoundedFrame::drawRing(painter, style.subElementRect(QStyle::SE_CheckBoxIndicator, &option), 6, 2,
                                         palette);
              }));
}

TEST_F(LinuxStyleMeasures, GiveAGroupBoxItsTitleAboveAndFourPointsAroundItsContents)
{
    auto option = optionOf<QStyleOptionGroupBox>(QStyle::State_Enabled);
    option.rect = QRect(10, 20, 200, 100);
    option.text = u"New sandbox"_s;
    option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
    const auto part = [&](QStyle::SubControl control) {
        return style.subControlRect(QStyle::CC_GroupBox, &option, control, nullptr);
    };
    const int text = option.fontMetrics.height();
    const int width = option.fontMetrics.horizontalAdvance(option.text);
    EXPECT_EQ(part(QStyle::SC_GroupBoxLabel), QRect(18, 24, width, text + 4));
    EXPECT_EQ(part(QStyle::SC_GroupBoxContents), QRect(14, 20 + text + 8, 192, 100 - text - 8 - 4));
    EXPECT_EQ(part(QStyle::SC_GroupBoxFrame), option.rect);
    option.direction = Qt::RightToLeft;
    EXPECT_EQ(part(QStyle::SC_GroupBoxLabel).right(), option.rect.right() - 8);
}

TEST_F(LinuxStyleMeasures, RoundAGroupBoxBySixPoints)
{
    auto option = optionOf<QStyleOptionGroupBox>(QStyle::State_Enabled);
    option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
    EXPECT_EQ(
        picture([&](QPainter &painter) { style.drawComplexControl(QStyle::CC_GroupBox, &option, &painter, nullptr); }),
        picture([&](QPainter &painter) {
            RoundedFrame::draw(painter, area, 6, Colours::line(palette, 0.25F), Colours::pane(palette));
        }));
}

TEST_F(LinuxStyleMeasures, LeaveAGroupBoxThatCanBeCheckedToThePlatform)
{
    auto option = optionOf<QStyleOptionGroupBox>(QStyle::State_Enabled);
    option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxCheckBox;
    option.text = QStringLiteral("Box");
    const QStyle::SubControl contents = QStyle::SC_GroupBoxContents;
    EXPECT_EQ(style.subControlRect(QStyle::CC_GroupBox, &option, contents, nullptr),
              base.subControlRect(QStyle::CC_GroupBox, &option, contents, nullptr));
    option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
    EXPECT_NE(style.subControlRect(QStyle::CC_GroupBox, &option, contents, nullptr),
              base.subControlRect(QStyle::CC_GroupBox, &option, contents, nullptr));
}

TEST_F(LinuxStyleMeasures, GiveControlsTwentySixPointsAndMoreWhereTheyNeedMore)
{
    const auto height = [this](QStyle::ContentsType type, const QStyleOption &option, int content) {
        return style.sizeFromContents(type, &option, QSize(50, content), nullptr).height();
    };
    const auto button = optionOf<QStyleOptionButton>(QStyle::State_Enabled);
    const auto picker = optionOf<QStyleOptionComboBox>(QStyle::State_Enabled);
    const auto field = optionOf<QStyleOptionFrame>(QStyle::State_Enabled);
    EXPECT_EQ(height(QStyle::CT_PushButton, button, 4), 26);
    EXPECT_EQ(height(QStyle::CT_ComboBox, picker, 4), 26);
    EXPECT_EQ(height(QStyle::CT_LineEdit, field, 4), 26);
    EXPECT_GE(height(QStyle::CT_LineEdit, field, 60), 60);
    EXPECT_EQ(style.sizeFromContents(QStyle::CT_LineEdit, &field, QSize(50, 4), nullptr).width(),
              base.sizeFromContents(QStyle::CT_LineEdit, &field, QSize(50, 4), nullptr).width());
    EXPECT_EQ(style.pixelMetric(QStyle::PM_IndicatorWidth), 22) << "the box and room for its ring";
    EXPECT_EQ(style.pixelMetric(QStyle::PM_IndicatorHeight), 22);
    EXPECT_EQ(style.pixelMetric(QStyle::PM_ScrollBarExtent), base.pixelMetric(QStyle::PM_ScrollBarExtent));
}

TEST_F(LinuxStyleMeasures, LeaveFourPointsBesideTheTextOfAField)
{
    const auto option = optionOf<QStyleOptionFrame>(QStyle::State_Enabled);
    EXPECT_EQ(style.subElementRect(QStyle::SE_LineEditContents, &option, nullptr),
              base.subElementRect(QStyle::SE_LineEditContents, &option, nullptr).adjusted(4, 0, -4, 0));
}

TEST_F(LinuxStyleMeasures, LeaveTheRestToThePlatform)
{
    const auto option = optionOf<QStyleOptionButton>(QStyle::State_Enabled | QStyle::State_Raised);
    EXPECT_EQ(picture(QStyle::PE_PanelButtonCommand, option), picture([&](QPainter &painter) {
                  base.drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, nullptr);
              }));
    EXPECT_NE(picture(QStyle::PE_PanelButtonCommand, option), picture([](QPainter &) {}));
    EXPECT_TRUE(style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton).isNull()) << "it is never seen";
    EXPECT_FALSE(style.standardIcon(QStyle::SP_MessageBoxCritical).isNull());
}

TEST_F(LinuxStyleMeasures, LeaveThePaletteInTheGroupThatItWasIn)
{
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Disabled}) {
        palette.setCurrentColorGroup(group);
        style.polish(palette);
        EXPECT_EQ(palette.currentColorGroup(), group);
    }
}
