#include "Screens/ContentView/Screens/MachinesViewTest.h"

#include "Screens/Places.h"

#include <QLayout>

namespace
{

class MachinesViewLayout : public MachinesViewTest
{
protected:
    MachinesView &showLarge(const QStringList &names)
    {
        show(names);
        window.content().resize(1000, 900);
        QCoreApplication::processEvents();
        return view();
    }

    QRect place(const QWidget *widget) { return Places::in(view(), widget); }
};

} // namespace

TEST_F(MachinesViewLayout, HasBoxProgressLogErrorAndListBelowEachOtherTenPointsApart)
{
    showLarge({u"box"_s});
    window.orbStack.tools().addTool(u"orb"_s, u"cd '%1' || exit 1\ncase \"$1\" in\nstatus) cat state ;;\n"
                                              "list) echo 'no list' >&2; exit 1 ;;\n"
                                              "*) echo fetching; while [ ! -e go ]; do sleep 0.02; done ;;\nesac"_s.arg(
                                                  window.orbStack.tools().path(u"."_s)));
    nameField().setText(u"scratch"_s);
    press(view(), u"Create"_s);
    EXPECT_TRUE(waitFor(window.machines.refresh()));
    const auto *introduction =
        find<PlainLabel>(view(), u"Machines are real Linux systems on this Mac. They stay until you delete them."_s);
    const auto *box = find<QGroupBox>(view(), u"New sandbox"_s);
    const auto *progress = find<QProgressBar>(view(), u"In progress"_s);
    const auto *log = find<LogBox>(view(), u"Machine log"_s);
    const auto *error = find<NoteText>(view(), u"no list"_s);
    const auto gaps = [&] {
        return Places::gapsBelow(view(), {{introduction}, {box}, {progress}, {log}, {error}, {&list()}});
    };
    Places::expectSoon(gaps, QList<int>({10, 10, 10, 10, 10}));
    const QRect column = view().layout()->contentsRect();
    for (const QWidget *each :
         std::initializer_list<const QWidget *>{introduction, box, progress, log, error, &list()}) {
        EXPECT_EQ(place(each).left(), column.left());
        EXPECT_EQ(place(each).width(), column.width());
    }
    EXPECT_EQ(error->font(), Typography::body());
    release();
    EXPECT_TRUE(untilIdle());
}

TEST_F(MachinesViewLayout, FillsTheRowOfItsBoxFourPointsFromEveryEdge)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    showLarge({});
    const auto *box = find<QGroupBox>(view(), u"New sandbox"_s);
    const QRect inside = box->contentsRect().marginsRemoved({4, 4, 4, 4});
    const auto *label = find<PlainLabel>(view(), u"Distro"_s);
    const auto *picker = find<QComboBox>(view(), u"Distro"_s);
    const auto *create = find<QPushButton>(view(), u"Create"_s);
    const auto within = [box](const QWidget *widget) { return Places::in(*box, widget); };
    Places::expectSoon([&] { return within(label).left(); }, inside.left());
    EXPECT_EQ(within(picker).right(), inside.left() + 180 - 1) << "the picker ends where its 180 points do";
    EXPECT_EQ(label->width(), label->sizeHint().width()) << "what the label leaves is the picker's";
    EXPECT_EQ(within(create).right(), inside.right());
    const QList<int> gaps = Places::gapsBeside(*box, {picker, &nameField(), create});
    EXPECT_EQ(gaps[0], gaps[1]);
    EXPECT_LE(gaps[0], 12) << "the name has all the room that is left";
    EXPECT_GT(gaps[0], 0);
    QRect row;
    for (const QWidget *each : std::initializer_list<const QWidget *>{label, picker, &nameField(), create}) {
        EXPECT_NEAR(within(each).center().y(), inside.center().y(), 1);
        row |= within(each);
    }
    EXPECT_EQ(row, inside);
}

TEST_F(MachinesViewLayout, SaysInTheSecondaryColourWhyThereIsNoList)
{
    showLarge({});
    const auto colour = [this](const QString &text) {
        const auto *label = find<PlainLabel>(view(), text);
        EXPECT_NE(label, nullptr);
        EXPECT_EQ(label->font(), Typography::body());
        return label->palette().color(QPalette::WindowText);
    };
    EXPECT_EQ(colour(noMachines), Colours::secondary(view().palette()));
    window.orbStack.setRunning(false);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_EQ(colour(notRunning), Colours::secondary(view().palette()));
}
