#include "FindablePaneTest.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

TEST_F(FindablePaneTest, BeginsWithWhatIsInViewWhereverTheCaretStands)
{
    run.append(u"one two\nONE two\none\n"_s, OutputKind::out);
    output->select(9, 9);
    type(u"one"_s);
    EXPECT_TRUE(hasSelected(u"one"_s, 0));
    QTest::keyClick(field(), Qt::Key_Escape);
    output->select(9, 9);
    findable->findNext();
    EXPECT_TRUE(hasSelected(u"one"_s, 0)) << "the first in view";
    output->select(9, 9);
    findable->findPrevious();
    EXPECT_TRUE(hasSelected(u"one"_s, 16)) << "the last in view";
    output->select(8, 11);
    findable->findPrevious();
    EXPECT_TRUE(hasSelected(u"one"_s, 0)) << "the one before what is selected";
    output->select(8, 11);
    findable->findNext();
    EXPECT_TRUE(hasSelected(u"one"_s, 16)) << "the one behind it";
}

TEST_F(FindablePaneTest, ClosesItsBarAtEscapeAloneAndLetsEveryOtherKeyPass)
{
    const auto isTaken = [this](Qt::Key key) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(findable, &press);
        return press.isAccepted();
    };
    EXPECT_FALSE(isTaken(Qt::Key_Escape)) << "it is not open";
    findable->find();
    EXPECT_FALSE(isTaken(Qt::Key_F5));
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(isTaken(Qt::Key_Escape));
    EXPECT_FALSE(isOpen());
}
