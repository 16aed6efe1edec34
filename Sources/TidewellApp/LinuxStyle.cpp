#include "TidewellApp/LinuxStyle.h"

#include "Look/Colours.h"
#include "Look/RoundedFrame.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace
{

constexpr double controlRadius = 4;
constexpr double groupRadius = 6;
constexpr double checkBoxRingRadius = 6;
constexpr int ringThickness = 2;
constexpr int controlHeight = 26;
constexpr int boxSize = 16;
/// With room around the box for the ring.
constexpr int indicatorSize = boxSize + 6;
constexpr int textInset = 4;
constexpr int titleInset = 8;

QColor readableSelection(const QPalette &palette)
{
    const QColor ground = palette.color(QPalette::Highlight);
    const QColor own = palette.color(QPalette::HighlightedText);
    if (Colours::contrast(own, ground) >= Colours::readable)
        return own;
    return Colours::contrast(Qt::white, ground) >= Colours::readable ? Qt::white : Qt::black;
}

QColor readableLink(const QPalette &palette)
{
    const QColor own = palette.color(QPalette::Link);
    if (Colours::contrast(own, palette.color(QPalette::Base)) >= Colours::readable)
        return own;
    return QColor::fromRgb(Colours::isDark(palette) ? 0x6cb6ff : 0x0b5cad);
}

bool isEnabled(const QStyleOption &option)
{
    return option.state.testFlag(QStyle::State_Enabled);
}

void drawTextField(const QStyleOption &option, QPainter &painter)
{
    const QPalette &palette = option.palette;
    RoundedFrame::draw(painter, option.rect, controlRadius, Colours::line(palette, isEnabled(option) ? 0.4F : 0.25F),
                       palette.color(QPalette::Base));
    if (option.state.testFlag(QStyle::State_HasFocus))
        RoundedFrame::drawRing(painter, option.rect, controlRadius, ringThickness, palette);
}

void drawCheckBox(const QStyleOption &option, QPainter &painter)
{
    const QPalette &palette = option.palette;
    const int size = std::min({boxSize, option.rect.width(), option.rect.height()});
    QRect place(0, 0, size, size);
    place.moveCenter(option.rect.center());
    const QColor field = palette.color(QPalette::Base);
    const QColor ground = option.state.testFlag(QStyle::State_Sunken)
                              ? Colours::mixed(palette.color(QPalette::Text), field, 0.15F)
                              : field;
    RoundedFrame::draw(painter, place, controlRadius, Colours::line(palette, isEnabled(option) ? 0.7F : 0.3F), ground);

    const QRectF box(place);
    const auto within = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette.color(QPalette::Text), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (option.state.testFlag(QStyle::State_On))
        painter.drawPolyline(QPolygonF{within(0.27, 0.52), within(0.43, 0.69), within(0.74, 0.31)});
    else if (option.state.testFlag(QStyle::State_NoChange))
        painter.drawLine(within(0.28, 0.5), within(0.72, 0.5));
    painter.restore();
}

int titleHeight(const QStyleOptionGroupBox &box)
{
    return box.fontMetrics.height() + titleInset;
}

void drawGroupBox(const QStyleOptionGroupBox &box, QPainter &painter, const QStyle &style, const QWidget *widget)
{
    const QPalette &palette = box.palette;
    RoundedFrame::draw(painter, box.rect, groupRadius, Colours::line(palette, 0.25F), Colours::pane(palette));
    const QRect title = style.subControlRect(QStyle::CC_GroupBox, &box, QStyle::SC_GroupBoxLabel, widget);
    style.drawItemText(&painter, title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette,
                       isEnabled(box), box.text, QPalette::WindowText);
}

/// A box whose title is only a title; one that can be checked is left to the platform.
const QStyleOptionGroupBox *titledBox(QStyle::ComplexControl control, const QStyleOption *option)
{
    const auto *box =
        control == QStyle::CC_GroupBox ? qstyleoption_cast<const QStyleOptionGroupBox *>(option) : nullptr;
    return box != nullptr && !box->subControls.testFlag(QStyle::SC_GroupBoxCheckBox) ? box : nullptr;
}

} // namespace

void LinuxStyle::polish(QPalette &palette)
{
    QProxyStyle::polish(palette);
    const QPalette::ColorGroup before = palette.currentColorGroup();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setCurrentColorGroup(group);
        palette.setColor(group, QPalette::PlaceholderText, Colours::placeholder(palette));
        palette.setColor(group, QPalette::Link, readableLink(palette));
        palette.setColor(group, QPalette::HighlightedText, readableSelection(palette));
    }
    palette.setCurrentColorGroup(before);
}

void LinuxStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    switch (element) {
    case PE_PanelLineEdit:
        // Without a frame it is a part of something else, such as a combo box.
        if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option); frame && frame->lineWidth > 0)
            return drawTextField(*option, *painter);
        break;
    case PE_IndicatorCheckBox:
        return drawCheckBox(*option, *painter);
    case PE_FrameFocusRect:
        return RoundedFrame::drawRing(*painter, option->rect, controlRadius, ringThickness, option->palette);
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void LinuxStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    const auto *checkBox = element == CE_CheckBox ? qstyleoption_cast<const QStyleOptionButton *>(option) : nullptr;
    if (checkBox != nullptr && checkBox->state.testFlag(State_HasFocus)) {
        // Around the box: Qt puts it around the label, wherever a style would have it.
        QStyleOptionButton withoutFocus = *checkBox;
        withoutFocus.state &= ~State_HasFocus;
        QProxyStyle::drawControl(element, &withoutFocus, painter, widget);
        RoundedFrame::drawRing(*painter, subElementRect(SE_CheckBoxIndicator, option, widget), checkBoxRingRadius,
                               ringThickness, option->palette);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
    // Qt's own style shows it only after a Tab.
    if (element == CE_PushButton && option->state.testFlag(State_HasFocus))
        proxy()->drawPrimitive(PE_FrameFocusRect, option, painter, widget);
}

void LinuxStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                    const QWidget *widget) const
{
    if (const QStyleOptionGroupBox *box = titledBox(control, option))
        return drawGroupBox(*box, *painter, *this, widget);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox && option->state.testFlag(State_HasFocus))
        proxy()->drawPrimitive(PE_FrameFocusRect, option, painter, widget);
}

QRect LinuxStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    switch (element) {
    case SE_LineEditContents:
        return QProxyStyle::subElementRect(element, option, widget).adjusted(textInset, 0, -textInset, 0);
    default:
        return QProxyStyle::subElementRect(element, option, widget);
    }
}

QRect LinuxStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                 const QWidget *widget) const
{
    const QStyleOptionGroupBox *box = titledBox(control, option);
    if (box == nullptr)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const int height = titleHeight(*box);
    const QRect whole = box->rect;
    switch (part) {
    case SC_GroupBoxLabel:
        return visualRect(box->direction, whole,
                          QRect(whole.left() + titleInset, whole.top() + titleInset / 2,
                                box->fontMetrics.horizontalAdvance(box->text), height - titleInset / 2));
    case SC_GroupBoxContents:
        return whole.adjusted(titleInset / 2, height, -titleInset / 2, -titleInset / 2);
    default:
        return whole;
    }
}

QSize LinuxStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                   const QWidget *widget) const
{
    const QSize own = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
    case CT_ComboBox:
    case CT_LineEdit:
        // In one row they stand at one height.
        return {own.width(), std::max(own.height(), controlHeight)};
    default:
        return own;
    }
}

int LinuxStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    if (metric == PM_IndicatorWidth || metric == PM_IndicatorHeight)
        return indicatorSize;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

QIcon LinuxStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    if (icon == SP_ToolBarHorizontalExtensionButton)
        return {};
    return QProxyStyle::standardIcon(icon, option, widget);
}
