// What stands behind the characters of the pane, and which parts of it are painted.

#include "OutputPaneTest.h"

#include "Look/Colours.h"
#include "Look/Typography.h"

using namespace Qt::StringLiterals;

namespace
{

class OutputPanePaintingTest : public OutputPaneTest
{
protected:
    /// A letter for the ground of each character: 's' where it is selected, 'f' where it was found, '.' for neither.
    QString grounds()
    {
        const QImage picture = pane.viewport()->grab().toImage();
        QString grounds;
        for (auto at = pane.text().begin(); at < pane.text().end(); at = pane.navigation().nextCharacter(at)) {
            const QRect place = pane.characterRect(at);
            const QColor colour = picture.pixelColor(place.left() + 1, place.top());
            grounds += colour == pane.palette().color(QPalette::Highlight) ? u's'
                       : colour == Colours::found(pane.palette())          ? u'f'
                                                                           : u'.';
        }
        return grounds;
    }

    void find(const QString &text) { pane.mark(TextPattern(text, Qt::CaseSensitive)); }
};

} // namespace

TEST_F(OutputPanePaintingTest, GivesItsGroundToExactlyWhatIsSelectedOrWasFound)
{
    run.append(u"abcdefgh\nabcd\ncdcd\n"_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    EXPECT_EQ(grounds(), QString(19, u'.'));
    find(u"cd"_s);
    EXPECT_EQ(grounds(), u"..ff.......ff.ffff."_s);
    pane.select(3, 6);
    EXPECT_EQ(grounds(), u"..fsss.....ff.ffff."_s);
    pane.select(12, 15);
    EXPECT_EQ(grounds(), u"..ff.......fsssfff."_s);
    find(u"d\nc"_s);
    pane.select(0, 0);
    EXPECT_EQ(grounds(), u"............fff...."_s);
    find({});
    EXPECT_EQ(grounds(), QString(19, u'.'));
}

TEST_F(OutputPanePaintingTest, MarksACharacterOfWhichAPartWasFound)
{
    run.append(u"xe\u0301x\n"_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    find(u"e"_s);
    EXPECT_EQ(grounds(), u".f.."_s);
    find(u"\u0301x"_s);
    EXPECT_EQ(grounds(), u".ff."_s);
}

TEST_F(OutputPanePaintingTest, PaintsEveryPartAsItPaintsTheWhole)
{
    fill();
    pane.selectAll();
    const QImage whole = pane.viewport()->grab().toImage();
    const QRect row = pane.characterRect(pane.positionAt({20, 100}));
    ASSERT_FALSE(row.isEmpty());
    for (const auto &[top, height] : {std::pair(row.top(), 1), std::pair(row.top() - 1, 1), std::pair(row.bottom(), 1),
                                      std::pair(row.bottom() + 1, 1), std::pair(row.top() - 1, 2),
                                      std::pair(row.bottom(), 2), std::pair(row.top() - 3, 100)}) {
        const QRect part(0, top, 200, height);
        EXPECT_EQ(pane.viewport()->grab(part).toImage(), whole.copy(part)) << top << ", " << height << " high";
    }
}

TEST_F(OutputPanePaintingTest, BreaksItsRowsWhereTheNextCharacterHasNoRoomWithinItsSixPoints)
{
    run.append(QString(1000, u'x'), OutputKind::out);
    ASSERT_TRUE(showsEnd());
    const OutputRange row = pane.navigation().rowAt(pane.positionAt({20, 50}));
    const double cell = CellFont(Typography::monospaced(12)).cellWidth();
    const double room = pane.viewport()->width() - 2 * OutputPaneViewport::padding;
    EXPECT_EQ(row.end - row.begin, static_cast<int>(room / cell));
}
