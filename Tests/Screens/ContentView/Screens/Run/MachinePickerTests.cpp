#include "ContentView/Screens/Run/MachinePicker.h"

#include "Support/Printing.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

QList<Machine> machines(const QStringList &names)
{
    QList<Machine> all;
    for (const QString &name : names) {
        Machine machine;
        machine.name = name;
        all.append(machine);
    }
    return all;
}

QStringList entries(const MachinePicker &picker)
{
    QStringList texts;
    for (int index = 0; index < picker.count(); ++index)
        texts.append(picker.itemText(index));
    return texts;
}

} // namespace

TEST(MachinePicker, OffersTheMachinesOrSaysThatThereAreNone)
{
    MachinePicker picker;
    QSignalSpy chosen(&picker, &MachinePicker::chosen);
    picker.showMachines({}, {});
    EXPECT_EQ(entries(picker), QStringList{u"No machines"_s});
    EXPECT_EQ(picker.currentIndex(), 0);
    picker.showMachines(machines({u"a"_s, u"b"_s}), u"b"_s);
    EXPECT_EQ(entries(picker), QStringList({u"a"_s, u"b"_s}));
    EXPECT_EQ(picker.currentText(), u"b"_s);
    EXPECT_EQ(chosen.count(), 0) << "that was not the user";
    picker.setCurrentIndex(0);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0][0].toString(), u"a"_s);
    picker.showMachines({}, {});
    EXPECT_EQ(entries(picker), QStringList{u"No machines"_s});
}

TEST(MachinePicker, TouchesOnlyTheEntriesThatDiffer)
{
    MachinePicker picker;
    picker.showMachines(machines({u"a"_s, u"b"_s, u"c"_s, u"d"_s}), u"a"_s);
    QSignalSpy inserted(picker.model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(picker.model(), &QAbstractItemModel::rowsRemoved);
    picker.showMachines(machines({u"a"_s, u"b"_s, u"c"_s, u"d"_s}), u"a"_s);
    EXPECT_EQ(inserted.count() + removed.count(), 0);
    picker.showMachines(machines({u"a"_s, u"x"_s, u"y"_s, u"d"_s}), u"d"_s);
    EXPECT_EQ(entries(picker), QStringList({u"a"_s, u"x"_s, u"y"_s, u"d"_s}));
    EXPECT_EQ(picker.currentText(), u"d"_s);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 2);
    EXPECT_EQ(inserted.count(), 2);
    picker.showMachines(machines({u"a"_s, u"a"_s, u"d"_s}), u"d"_s);
    EXPECT_EQ(entries(picker), QStringList({u"a"_s, u"a"_s, u"d"_s})) << "two of one name, too";
    picker.showMachines(machines({u"a"_s, u"d"_s}), u"d"_s);
    EXPECT_EQ(entries(picker), QStringList({u"a"_s, u"d"_s})) << "none of which is counted twice";
}

TEST(MachinePicker, ShowsANameOfAHundredCharactersWholeAndALongerOneCut)
{
    MachinePicker picker;
    const QString longest(100, u'n');
    picker.showMachines(machines({longest, longest + u'n'}), longest);
    EXPECT_EQ(picker.itemText(0), longest);
    EXPECT_EQ(picker.itemText(1), longest + u'…');
    EXPECT_EQ(picker.itemData(1).toString().size(), 101) << "it is chosen by its whole name";
}
