#include "OutputPane/OutputPanePainter.h"

#include "Look/Colours.h"
#include "Look/Typography.h"

#include <QImage>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

constexpr int columns = 20;

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
        QImage image(static_cast<int>(columns * font.cellWidth()), font.rowHeight(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        const OutputPaneRow row(text, columns, font);
        OutputPanePainter(painter, font, palette).draw(row, text, styles, {});
        painter.end();
        int x = 0;
        while (x < image.width() && image.pixelColor(x, 0) == colour)
            ++x;
        for (int beyond = x + 1; beyond < image.width(); ++beyond)
            EXPECT_NE(image.pixelColor(beyond, 0), colour) << beyond;
        return x;
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
