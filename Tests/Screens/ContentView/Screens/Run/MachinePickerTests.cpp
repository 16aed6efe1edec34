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

TEST(MachinePicker, ShowsAnyListAfterAnyOther)
{
    QList<QStringList> lists;
    lists.append(QStringList());
    for (qsizetype shorter = 0; lists.size() < 31; ++shorter) {
        for (const QString &name : {u"a"_s, u"b"_s})
            lists.append(QStringList(lists[shorter]) << name);
    }
    ASSERT_EQ(lists.last(), QStringList(4, u"b"_s)) << "all of up to four machines with two names";
    MachinePicker picker;
    for (const QStringList &before : lists) {
        for (const QStringList &after : lists) {
            picker.showMachines(machines(before), before.value(0));
            picker.showMachines(machines(after), after.value(0));
            ASSERT_EQ(entries(picker), after.isEmpty() ? QStringList{u"No machines"_s} : after)
                << before.join(u' ').toStdString() << " -> " << after.join(u' ').toStdString();
            ASSERT_EQ(picker.currentIndex(), 0);
        }
    }
}

TEST(MachinePicker, IsAsWideAsSixteenCharactersWhateverItOffers)
{
    QComboBox usual;
    usual.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    usual.setMinimumContentsLength(16);
    MachinePicker picker;
    for (const QStringList &names : {QStringList(), QStringList{u"a"_s}, QStringList{QString(100, u'w')}}) {
        picker.showMachines(machines(names), names.value(0));
        EXPECT_EQ(picker.sizeHint().width(), usual.sizeHint().width());
        EXPECT_EQ(picker.minimumSizeHint(), QSize(80, usual.minimumSizeHint().height()));
    }
}
