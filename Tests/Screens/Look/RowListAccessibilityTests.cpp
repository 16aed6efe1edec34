#include "Screens/Look/RowListTest.h"

TEST_F(RowListTest, IsAListOfGroupsForAssistiveTechnology)
{
    list->setRows(rowsNumbered(0, 1000));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::List);
    EXPECT_EQ(interface->text(QAccessible::Name), u"Things"_s);
    ASSERT_EQ(interface->childCount(), 1000);
    EXPECT_EQ(interface->child(1000), nullptr);
    EXPECT_EQ(interface->child(-1), nullptr);

    QAccessibleInterface *row = interface->child(700);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->role(), QAccessible::Grouping);
    EXPECT_EQ(row->text(QAccessible::Name), u"row700"_s);
    EXPECT_EQ(interface->indexOfChild(row), 700);
    EXPECT_EQ(row->parent(), interface);
    QStringList names;
    QAccessibleInterface *stop = nullptr;
    for (int index = 0; index < row->childCount(); ++index) {
        names << row->child(index)->text(QAccessible::Name);
        if (names.last() == u"Stop"_s)
            stop = row->child(index);
    }
    names.sort();
    EXPECT_EQ(names,
              (QStringList{u"Delete"_s, u"Start"_s, u"Stop"_s, u"caption of row700"_s, u"not running"_s, u"row700"_s}));
    ASSERT_NE(stop, nullptr);
    EXPECT_EQ(stop->text(QAccessible::Description), u"Stop row700"_s);
    EXPECT_TRUE(stop->state().disabled);
}

TEST_F(RowListTest, PressesAButtonForAssistiveTechnologyAlsoOutOfView)
{
    list->setRows(rowsNumbered(0, 1000));
    QSignalSpy pressed(list, &RowList::pressed);
    QAccessibleInterface *button = QAccessible::queryAccessibleInterface(list->row(700)->buttons()[0]);
    ASSERT_NE(button->actionInterface(), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_TRUE(waitUntil([&pressed] { return pressed.count() == 1; }));
    EXPECT_EQ(pressed[0][0].toInt(), 700);
}

TEST_F(RowListTest, FindsTheRowAtAPointOfTheScreen)
{
    list->setRows(rowsNumbered(0, 1000));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    const QPoint point = list->row(3)->mapToGlobal(QPoint(5, 5));
    EXPECT_EQ(interface->childAt(point.x(), point.y()), interface->child(3));
}
