#include "OutputPane/OutputPanePainter.h"

#include "Look/Colours.h"
#include "Look/Typography.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

constexpr int columnsOfPane = 20;

/// Rows drawn on white, with nothing but their grounds looked at.
class OutputPanePainterTest : public testing::Test
{
protected:
    OutputPanePainterTest()
    {
        palette.setColor(QPalette::Highlight, Qt::magenta);
        palette.setColor(QPalette::HighlightedText, Qt::magenta);
    }

    /// How many points of the row's top line have this colour, from the left edge on.
    double width(QByteArrayView text, const std::vector<OutputPanePainter::Style> &styles, const QColor &colour)
    {
        const QImage image = drawn(text, styles);
        int x = 0;
        while (x < image.width() && image.pixelColor(x, 0) == colour)
            ++x;
        for (int beyond = x + 1; beyond < image.width(); ++beyond)
            EXPECT_NE(image.pixelColor(beyond, 0), colour) << beyond;
        return x;
    }

    /// The row as it is drawn on a screen with so many pixels in a point.
    QImage drawn(QByteArrayView text, const std::vector<OutputPanePainter::Style> &styles, int ratio = 1)
    {
        QImage image = paper(ratio);
        QPainter painter(&image);
        OutputPanePainter(painter, font, palette).draw(OutputPaneRow(text, columnsOfPane, font), text, styles, {});
        return image;
    }

    QImage paper(int ratio) const
    {
        QImage image(static_cast<int>(columnsOfPane * font.cellWidth()) * ratio, font.rowHeight() * ratio,
                     QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::white);
        return image;
    }

    CellFont font{Typography::monospaced(12)};
    QPalette palette;
    const OutputPanePainter::Style plain{};
    const OutputPanePainter::Style selected{.isSelected = true};
    const OutputPanePainter::Style found{.isFound = true};
};

} // namespace

TEST_F(OutputPanePainterTest, ColoursEachKindByItsMeaning)
{
    const auto colour = [this](OutputKind kind) { return OutputPanePainter::colourOf(kind, palette); };
    EXPECT_EQ(colour(OutputKind::out), Colours::primary(palette));
    EXPECT_EQ(colour(OutputKind::err), Colours::red(palette));
    EXPECT_EQ(colour(OutputKind::info), Colours::secondary(palette));
    EXPECT_EQ(colour(OutputKind::ok), Colours::green(palette));
    EXPECT_EQ(colour(OutputKind::fail), Colours::purple(palette)) << "red is standard error's alone";
    EXPECT_EQ(colour(OutputKind::warn), Colours::orange(palette));
}

TEST_F(OutputPanePainterTest, SelectsToTheEndOfARowAndNoFurther)
{
    // In memory, a shorter row and its styles lie where a longer one did, which must not be seen.
    std::vector<OutputPanePainter::Style> styles(4, selected);
    EXPECT_NEAR(width("abcd", styles, Qt::magenta), 4 * font.cellWidth(), 1);
    styles.pop_back();
    EXPECT_NEAR(width("abc", styles, Qt::magenta), 3 * font.cellWidth(), 1);
    EXPECT_EQ(width("abc", {3, plain}, Qt::magenta), 0);
    EXPECT_NEAR(width("abc", {selected, selected, plain}, Qt::magenta), 2 * font.cellWidth(), 1);
}

TEST_F(OutputPanePainterTest, ShowsASelectedLineEndAsHalfABlank)
{
    EXPECT_NEAR(width("ab\n", {3, selected}, Qt::magenta), 2.5 * font.cellWidth(), 1);
    EXPECT_NEAR(width("\r\n", {1, selected}, Qt::magenta), 0.5 * font.cellWidth(), 1);
}

TEST_F(OutputPanePainterTest, SelectsTheWholeOfATabAndOfAWideCharacter)
{
    EXPECT_NEAR(width("\tx", {selected, plain}, Qt::magenta), 8 * font.cellWidth(), 1);
    EXPECT_NEAR(width("\u4e2dx", {selected, plain}, Qt::magenta), 2 * font.cellWidth(), 1);
}

TEST_F(OutputPanePainterTest, MarksWhatWasFoundUnlessItIsSelected)
{
    const QColor mark = Colours::found(palette).rgb();
    EXPECT_NEAR(width("abc", {found, found, plain}, mark), 2 * font.cellWidth(), 1);
    OutputPanePainter::Style both = found;
    both.isSelected = true;
    EXPECT_NEAR(width("abc", {both, found, plain}, Qt::magenta), font.cellWidth(), 1);
}

TEST_F(OutputPanePainterTest, DrawsALastSignOfRightToLeftTextWhereItComesToStandAlone)
{
    const QByteArray text("\u05d0 (\u05d1)");
    std::vector<OutputPanePainter::Style> styles(5, plain);
    const QImage one = drawn(text, styles);
    styles.back().kind = OutputKind::err;
    const QImage other = drawn(text, styles);
    EXPECT_NE(one, other) << "its last sign has a colour of its own";
    // That is at the left, far from the last of the cells.
    for (int x = static_cast<int>(4 * font.cellWidth()); x < one.width(); ++x) {
        for (int y = 0; y < one.height(); ++y)
            EXPECT_EQ(one.pixelColor(x, y), other.pixelColor(x, y)) << x << ", " << y;
    }
}

TEST_F(OutputPanePainterTest, CentresACharacterInItsCells)
{
    constexpr int ratio = 8;
    const QByteArray text("\u4e2d");
    const CellFont::Shaped &shaped = *font.shaped(text);
    const double room = 2 * font.cellWidth() - shaped.width;
    ASSERT_GT(room, 1) << "the font leaves it some";
    QImage expected = paper(ratio);
    QPainter painter(&expected);
    painter.setPen(OutputPanePainter::colourOf(OutputKind::out, palette));
    const QPointF place(std::round(room / 2 * ratio) / ratio, font.ascent() - shaped.ascent);
    for (const QGlyphRun &run : shaped.glyphs)
        painter.drawGlyphRun(place, run);
    painter.end();
    EXPECT_NE(expected, paper(ratio));
    EXPECT_EQ(drawn(text, {plain}, ratio), expected);
}

TEST_F(OutputPanePainterTest, LeavesThePainterAsItWas)
{
    QImage image = paper(1);
    QPainter painter(&image);
    painter.translate(3, 5);
    const QTransform before = painter.transform();
    OutputPanePainter rows(painter, font, palette);
    bool isAnyPressed = false;
    // Joined letters, and characters whose glyphs are wider than their cells.
    for (const QByteArray &text : {QByteArray("\u05d0\u05d1"), QByteArray("\u0915"), QByteArray("\u2e3b"),
                                   QByteArray("\U0001f469\u200d\U0001f52c"), QByteArray("\U0001f600")}) {
        const OutputPaneRow row(text, columnsOfPane, font);
        isAnyPressed = isAnyPressed || (row.joined().empty() &&
                                        font.shaped(text)->width > row.clusters().front().cells * font.cellWidth());
        rows.draw(row, text, std::vector(row.clusters().size(), plain), {});
        EXPECT_EQ(painter.transform(), before) << text.toStdString();
    }
    EXPECT_TRUE(isAnyPressed);
}

TEST_F(OutputPanePainterTest, TintsTheCellsOfASymbolsNameWithinTheirEdges)
{
    const QImage image = drawn("\x1b", {plain}); // "^["
    const auto colour = [&image](int x, int y) { return image.pixelColor(x, y); };
    const int right = static_cast<int>(2 * font.cellWidth()) - 2;
    const int bottom = image.height() - 2;
    const QColor tint = Colours::mixed(OutputPanePainter::colourOf(OutputKind::out, palette), Qt::white, 0.14F);
    for (const auto &[x, y] : {std::pair(1, 1), std::pair(right, 1), std::pair(1, bottom), std::pair(right, bottom)})
        EXPECT_NEAR(colour(x, y).green(), tint.green(), 2) << x << ", " << y;
    for (const int x : {1, right}) {
        EXPECT_EQ(colour(x, 0), Qt::white);
        EXPECT_EQ(colour(x, bottom + 1), Qt::white);
    }
    EXPECT_EQ(colour(right + 4, 1), Qt::white);
    EXPECT_EQ(drawn("\x1b", {selected}).pixelColor(1, 0), Qt::magenta) << "its ground is that of any character";
}
