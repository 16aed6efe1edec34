#include "Screens/ContentView/Screens/ContainersViewTest.h"

#include "Screens/Places.h"

#include <QLayout>

namespace
{

class ContainersViewLayout : public ContainersViewTest
{
protected:
    ContainersViewLayout()
    {
        show();
        window.content().resize(1000, 900);
        QCoreApplication::processEvents();
    }

    QRect place(const QWidget *widget) { return Places::in(view(), widget); }

    const PlainLabel *title() { return find<PlainLabel>(view(), u"Containers (docker ps -a)"_s); }
};

} // namespace

TEST_F(ContainersViewLayout, HasFormProgressMessageErrorAndListBelowEachOtherTenPointsApart)
{
    hold();
    image().setText(u"nginx"_s);
    press(view(), u"Run"_s);
    // The tool is under way, and not merely about to be read, when another takes its place.
    ASSERT_TRUE(waitUntil([this] { return calls(u"<run><-d><nginx>"_s) == 1; }));
    tools().addTool(u"docker"_s, u"echo 'no engine' >&2; exit 1"_s);
    EXPECT_TRUE(waitFor(window.containers.refresh()));
    const auto *refresh = find<QPushButton>(view(), u"Refresh"_s);
    const auto *form = find<QGroupBox>(view(), u"Run a container"_s);
    const auto *progress = find<QProgressBar>(view(), u"In progress"_s);
    const auto *message = find<NoteText>(view(), u"Running nginx… (pulling the image can take a while)"_s);
    const auto *error = find<NoteText>(view(), u"no engine"_s);
    const auto gaps = [&] {
        return Places::gapsBelow(view(), {{title(), refresh}, {form}, {progress}, {message}, {error}, {&list()}});
    };
    Places::expectSoon(gaps, QList<int>({10, 10, 10, 10, 10}));
    const QRect column = view().layout()->contentsRect();
    EXPECT_EQ(place(title()).left(), column.left());
    EXPECT_EQ(place(refresh).right(), column.right());
    for (const QWidget *each : std::initializer_list<const QWidget *>{form, progress, message, error, &list()}) {
        EXPECT_EQ(place(each).left(), column.left());
        EXPECT_EQ(place(each).width(), column.width());
    }
    EXPECT_EQ(message->font(), Typography::callout());
    EXPECT_EQ(message->palette().color(QPalette::Text), Colours::secondary(view().palette()));
    EXPECT_EQ(error->font(), Typography::body());
}

TEST_F(ContainersViewLayout, FillsTheRowOfItsForm)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    const auto *form = find<QGroupBox>(view(), u"Run a container"_s);
    const QRect inside = form->contentsRect().marginsRemoved({4, 4, 4, 4});
    const QList<const QWidget *> row{&image(), &field(u"Ports (8080:80)"_s), &field(u"Name (optional)"_s),
                                     find<QPushButton>(view(), u"Run"_s)};
    const QList<int> gaps = Places::gapsBeside(*form, row);
    EXPECT_EQ(gaps, QList<int>(3, gaps[0]));
    EXPECT_GT(gaps[0], 0);
    QRect whole;
    for (const QWidget *each : row)
        whole |= Places::in(*form, each);
    EXPECT_EQ(whole, inside);
}

TEST_F(ContainersViewLayout, SetsItsWordsInTheColourOfTheirRank)
{
    EXPECT_EQ(title()->palette().color(QPalette::WindowText), Colours::primary(view().palette()));
    setContainers({});
    EXPECT_TRUE(waitFor(window.containers.refresh()));
    const auto *hint = find<PlainLabel>(view(), noContainers);
    ASSERT_NE(hint, nullptr);
    EXPECT_EQ(hint->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    EXPECT_EQ(hint->font(), Typography::body());
}

TEST_F(ContainersViewLayout, SetsTitleAndCloseAboveALogThatFillsTheSheet)
{
    press(view(), u"Logs"_s, u"Logs web"_s);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    const ContainerLogSheet &shown = *sheet();
    EXPECT_EQ(shown.windowTitle(), u"Logs: web"_s);
    const auto *name = find<PlainLabel>(shown, u"Logs: web"_s);
    const auto *close = find<QPushButton>(shown, u"Close"_s);
    const auto *log = find<LogBox>(shown, u"Container log"_s);
    EXPECT_EQ(name->font(), Typography::headline());
    EXPECT_EQ(name->palette().color(QPalette::WindowText), Colours::primary(shown.palette()));
    EXPECT_EQ(ByName::descriptionOf(close), u"Close the container log"_s);
    const QRect inside = shown.layout()->contentsRect();
    EXPECT_EQ(Places::in(shown, name).left(), inside.left());
    EXPECT_LT(Places::in(shown, name).right(), Places::in(shown, close).left());
    EXPECT_GT(Places::gapsBelow(shown, {{name, close}, {log}})[0], 0);
    EXPECT_EQ(Places::in(shown, log).left(), inside.left());
    EXPECT_EQ(Places::in(shown, log).bottomRight(), inside.bottomRight());
}
