#include "Look/PlainLabel.h"

#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Screens/Look/DarkPalette.h"
#include "Support/Waiting.h"
#include "Text/VisibleText.h"

#include <QHelpEvent>
#include <QImage>
#include <QToolTip>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

constexpr int width = 300;

/// The columns between which anything is drawn.
std::pair<int, int> extent(PlainLabel &label)
{
    const QImage picture = label.grab().toImage();
    int first = picture.width();
    int last = -1;
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            if (picture.pixel(x, y) != label.palette().color(QPalette::Window).rgb()) {
                first = std::min(first, x);
                last = x;
            }
        }
    }
    return {first, last};
}

} // namespace

TEST(PlainLabel, FillsItsWidthWithAsMuchOfALongTextAsFits)
{
    for (const auto fit : {PlainLabel::Fit::elideEnd, PlainLabel::Fit::elideMiddle}) {
        PlainLabel label(u"a path of many words "_s.repeated(20), Typography::body(), Colours::primary, fit);
        label.resize(width, label.sizeHint().height());
        const auto [first, last] = extent(label);
        const int letter = label.fontMetrics().horizontalAdvance(u"m…"_s);
        EXPECT_LT(first, letter);
        EXPECT_GT(last, width - letter);
    }
}

TEST(PlainLabel, ShowsAPathByItsTwoEndsAndASentenceByItsBeginning)
{
    const auto picture = [](const QString &text, PlainLabel::Fit fit) {
        PlainLabel label(text, Typography::body(), Colours::primary, fit);
        label.resize(width, label.sizeHint().height());
        return label.grab().toImage();
    };
    const QString middle(300, u'x');
    using Fit = PlainLabel::Fit;
    EXPECT_EQ(picture(u"/Users/"_s + middle + u"/end"_s, Fit::elideEnd),
              picture(u"/Users/"_s + middle + u"/END"_s, Fit::elideEnd));
    EXPECT_NE(picture(u"/Users/"_s + middle + u"/end"_s, Fit::elideMiddle),
              picture(u"/Users/"_s + middle + u"/END"_s, Fit::elideMiddle));
    EXPECT_NE(picture(u"/Users/"_s + middle + u"/end"_s, Fit::elideMiddle),
              picture(u"/USERS/"_s + middle + u"/end"_s, Fit::elideMiddle));
}

TEST(PlainLabel, KeepsAThousandCharactersOfALineAndTwoThousandOfASentence)
{
    const auto shown = [](qsizetype size, PlainLabel::Fit fit) {
        return PlainLabel(QString(size, u'x'), Typography::body(), Colours::primary, fit).text();
    };
    using Fit = PlainLabel::Fit;
    EXPECT_EQ(shown(1000, Fit::elideEnd), QString(1000, u'x'));
    EXPECT_EQ(shown(1001, Fit::elideEnd), QString(1000, u'x') + u'…');
    EXPECT_EQ(shown(1000, Fit::elideMiddle), QString(1000, u'x'));
    EXPECT_EQ(shown(1001, Fit::elideMiddle), QString(500, u'x') + u'…' + QString(500, u'x'));
    EXPECT_EQ(shown(2000, Fit::wrap), QString(2000, u'x'));
    EXPECT_EQ(shown(2001, Fit::wrap), QString(2000, u'x') + u'…');
}

TEST(PlainLabel, ShowsTheWholeInAToolTipOnlyWhereItIsCut)
{
    const auto hover = [](PlainLabel &label) {
        QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), label.mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(&label, &event);
    };
    const QString text = u"<b>a path</b> of many words "_s.repeated(20);
    PlainLabel cut(text, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd);
    cut.resize(width, cut.sizeHint().height());
    cut.show();
    hover(cut);
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_EQ(QToolTip::text(), VisibleText::toolTip(text));
    cut.setToolTip(u"its own"_s);
    hover(cut);
    EXPECT_EQ(QToolTip::text(), u"its own"_s);
    PlainLabel whole(u"short"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd);
    whole.resize(whole.sizeHint());
    whole.show();
    hover(whole);
    EXPECT_TRUE(waitUntil([] { return !QToolTip::isVisible(); }));
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
    const QFontMetrics metrics = label.fontMetrics();
    EXPECT_EQ(label.sizeHint(), QSize(metrics.horizontalAdvance(u"short"_s) + 1, metrics.height()));
    EXPECT_EQ(label.minimumSizeHint(), QSize(metrics.horizontalAdvance(u'\u2026'), metrics.height()));
    const PlainLabel narrow(u"i"_s, Typography::body(), Colours::primary, PlainLabel::Fit::elideEnd);
    EXPECT_EQ(narrow.minimumSizeHint(), narrow.sizeHint()) << "no wider than what it is the least of";
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
    const PlainLabel red(u"wrong"_s, Typography::body(), Colours::red, PlainLabel::Fit::elideEnd, &window);
    palette.setColor(QPalette::Window, Qt::black);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor::fromRgb(0x707070));
    window.setPalette(palette);
    EXPECT_EQ(red.palette().color(QPalette::Disabled, QPalette::WindowText), QColor::fromRgb(0x707070));
    EXPECT_EQ(red.palette().color(QPalette::Active, QPalette::WindowText), Colours::red(palette));
}
