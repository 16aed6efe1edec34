#include "Screens/Look/RowListTest.h"
#include "Support/ProcessorTimer.h"

#include <algorithm>
#include <limits>

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
    const QPoint beside = list->row(3)->mapToGlobal(QPoint(-5, 5));
    EXPECT_EQ(interface->childAt(beside.x(), beside.y()), nullptr);
}

TEST_F(RowListTest, AnswersForAllRowsWithoutMakingThem)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr qint64 mostMilliseconds = 1000;
#else
    constexpr qint64 mostMilliseconds = 300; // some 15 ms where nothing else runs; a widget each took 5.5 s
#endif
    // Of several times the shortest, whatever else goes on; each time other rows, of which nothing is known yet.
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (int begin = 0; begin < 9000 && shortest >= mostMilliseconds; begin += 3000) {
        list->setRows(rowsNumbered(begin, begin + 3000));
        const int made = list->widgetCount();
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
        ProcessorTimer timer;
        timer.start();
        for (int index = 0; index < 3000; ++index) {
            QAccessibleInterface *row = interface->child(index);
            ASSERT_EQ(row->text(QAccessible::Name), u"row%1"_s.arg(begin + index));
            EXPECT_EQ(row->role(), QAccessible::Grouping);
            EXPECT_EQ(row->parent(), interface);
            for (int part = 0; part < row->childCount(); ++part)
                EXPECT_FALSE(row->child(part)->text(QAccessible::Name).isEmpty());
        }
        shortest = std::min(shortest, timer.elapsed());
        EXPECT_EQ(list->widgetCount(), made);
    }
    RecordProperty("milliseconds", static_cast<int>(shortest));
    EXPECT_LT(shortest, mostMilliseconds);
}

TEST_F(RowListTest, ShowsARowAlikeWhetherItIsAWidgetOrNot)
{
    QList<RowContent> rows = rowsNumbered(0, 1000);
    rows[700].lines.append({u"own\u200ftext"_s, RowContent::TextStyle::smallestCaption, RowContent::Origin::own});
    rows[700].lines.append({u"hidden\u202e"_s, RowContent::TextStyle::smallestCaption});
    list->setRows(rows);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    const auto described = [interface] {
        QAccessibleInterface *row = interface->child(700);
        QStringList parts{row->text(QAccessible::Name), row->text(QAccessible::Description)};
        EXPECT_TRUE(row->isValid());
        EXPECT_EQ(row->child(-1), nullptr);
        EXPECT_EQ(row->child(row->childCount()), nullptr);
        EXPECT_EQ(row->indexOfChild(interface), -1);
        for (int index = 0; index < row->childCount(); ++index) {
            QAccessibleInterface *part = row->child(index);
            EXPECT_EQ(part->parent(), row);
            EXPECT_EQ(row->indexOfChild(part), index);
            parts.append(part->text(QAccessible::Name) + u'|' + part->text(QAccessible::Description) + u'|' +
                         QString::number(part->role()) + u'|' + QString::number(part->state().disabled) + u'|' +
                         QString::number(part->state().focusable && !part->state().disabled) + u'|' +
                         QString::number(part->childCount()));
            EXPECT_EQ(part->child(0), nullptr);
            EXPECT_EQ(part->indexOfChild(row), -1);
            EXPECT_EQ(part->window(), row->window());
        }
        return parts;
    };
    const QStringList unmade = described();
    const QRect place = interface->child(700)->rect();
    EXPECT_EQ(list->madeRow(700), nullptr);
    list->row(700);
    EXPECT_EQ(described(), unmade);
    EXPECT_EQ(interface->child(700)->rect(), place);
    EXPECT_EQ(interface->child(700)->object(), list->row(700));
}

TEST_F(RowListTest, PressesAndFocusesAButtonOfARowThatIsNoWidget)
{
    list->setRows(rowsNumbered(0, 1000));
    QSignalSpy pressed(list, &RowList::pressed);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    const auto buttonOf = [interface](int row, const QString &name) -> QAccessibleInterface * {
        for (int index = 0; index < interface->child(row)->childCount(); ++index) {
            if (interface->child(row)->child(index)->text(QAccessible::Name) == name)
                return interface->child(row)->child(index);
        }
        return nullptr;
    };
    EXPECT_EQ(list->madeRow(700), nullptr);
    EXPECT_EQ(buttonOf(700, u"row700"_s)->actionInterface(), nullptr) << "a text cannot be pressed";
    EXPECT_TRUE(buttonOf(700, u"Stop"_s)->actionInterface()->actionNames().isEmpty()) << "it is disabled";
    buttonOf(700, u"Delete"_s)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_TRUE(waitUntil([&pressed] { return pressed.count() == 1; }));
    EXPECT_EQ(pressed[0], (QVariantList{700, deleteThing}));
    buttonOf(400, u"Start"_s)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(focusedText(), u"Start row400"_s);
}

TEST_F(RowListTest, PressesNothingWhereAnotherRowHasComeMeanwhile)
{
    list->setRows(rowsNumbered(0, 1000));
    QSignalSpy pressed(list, &RowList::pressed);
    const QAccessibleInterface *row = QAccessible::queryAccessibleInterface(list->widget())->child(700);
    QAccessibleInterface *button = row->child(row->childCount() - 1);
    ASSERT_EQ(button->text(QAccessible::Name), u"Delete"_s);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    list->setRows(rowsNumbered(1, 1000));
    QCoreApplication::processEvents();
    EXPECT_EQ(pressed.count(), 0);
}

TEST_F(RowListTest, ForgetsRowsThatWereNoWidgetsWhenOthersCome)
{
    list->setRows(rowsNumbered(0, 1000));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    const QAccessible::Id id = QAccessible::uniqueId(interface->child(700));
    EXPECT_EQ(QAccessible::uniqueId(interface->child(700)), id) << "the same while nothing changes";
    list->setRows(rowsNumbered(1, 800));
    EXPECT_EQ(interface->child(700)->text(QAccessible::Name), u"row701"_s);
    EXPECT_TRUE(waitUntil([id] { return QAccessible::accessibleInterface(id) == nullptr; }));
}

TEST_F(RowListTest, PressesNothingWhereNoRowIsLeft)
{
    list->setRows(rowsNumbered(0, 1000));
    QSignalSpy pressed(list, &RowList::pressed);
    const QAccessibleInterface *row = QAccessible::queryAccessibleInterface(list->widget())->child(700);
    row->child(row->childCount() - 1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    list->setRows(rowsNumbered(0, 700));
    QCoreApplication::processEvents();
    EXPECT_EQ(pressed.count(), 0);
}

TEST_F(RowListTest, KnowsNoRowThatIsAWidgetNowOrHasGone)
{
    list->setRows(rowsNumbered(0, 1000));
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(list->widget());
    QAccessibleInterface *made = interface->child(700);
    QAccessibleInterface *gone = interface->child(600);
    list->row(700);
    EXPECT_EQ(interface->indexOfChild(made), -1);
    EXPECT_EQ(interface->indexOfChild(interface->child(700)), 700);
    EXPECT_EQ(interface->indexOfChild(gone), 600);
    EXPECT_TRUE(gone->isValid());
    list->setRows(rowsNumbered(0, 600));
    EXPECT_FALSE(gone->isValid());
    EXPECT_EQ(interface->indexOfChild(gone), -1);
    EXPECT_EQ(interface->indexOfChild(nullptr), -1);
}
