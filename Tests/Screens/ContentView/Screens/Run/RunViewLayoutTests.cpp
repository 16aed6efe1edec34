#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

#include "ContentView/Screens/Run/OutputSection.h"
#include "Look/Picker.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPane.h"
#include "Screens/Places.h"

namespace
{

using Places::gapsBelow;
using Places::gapsBeside;

/// The screen with everything on it that there can be before a run, in a window with room for it.
class RunViewLayout : public testing::Test
{
protected:
    RunViewLayout() : content(window.showRunning({u"box"_s}))
    {
        confirmDisposable();
        content.resize(1200, 1000);
        toggle(content, u"Disposable mode"_s)->click();
        shareFolder(content, folder);
        QCoreApplication::processEvents();
    }

    template <typename Widget>
    const Widget *the(const QString &name, const QString &description = {}) const
    {
        return find<Widget>(content, name, description);
    }

    QRect place(const QWidget *widget) const { return Places::in(content, widget); }

    static QColor colourOf(const PlainLabel *label) { return label->palette().color(QPalette::WindowText); }

    TestWindow window;
    ContentView &content;
    const QString folder = window.orbStack.tools().directory(0);
};

} // namespace

TEST_F(RunViewLayout, StandsInTheOrderOfUseWithTwelvePointsBetweenItsSections)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    const auto *script = the<ScriptEditor>(u"Script"_s);
    const auto *pane = the<OutputPane>(u"Output"_s);
    const auto gaps = [&] {
        return gapsBelow(content, {{script},
                                   {the<PlainLabel>(u"Machine"_s), the<MachinePicker>(u"Machine"_s),
                                    the<QCheckBox>(u"Disposable mode"_s), the<Picker>(u"Distribution"_s)},
                                   {the<PlainLabel>(nothingPersists)},
                                   {the<QPushButton>(u"Share a folder…"_s), the<PlainLabel>(folder),
                                    the<QPushButton>(u"Clear"_s, u"Stop sharing the folder"_s),
                                    the<QCheckBox>(u"10 minute time limit"_s)},
                                   {the<PlainLabel>(folderWarning)},
                                   {the<QLineEdit>(packagesField), the<QPushButton>(u"Install packages"_s)},
                                   {the<QPushButton>(u"Run"_s)},
                                   {the<PlainLabel>(u"Output"_s), the<QPushButton>(u"Copy output"_s),
                                    the<QPushButton>(u"Clear"_s, u"Clear the output"_s)},
                                   {pane}});
    };
    Places::expectSoon(gaps, QList<int>({12, 4, 12, 4, 12, 12, 12, 6}));
    const QList<const QWidget *> leading{script,
                                         the<PlainLabel>(u"Machine"_s),
                                         the<PlainLabel>(nothingPersists),
                                         the<QPushButton>(u"Share a folder…"_s),
                                         the<PlainLabel>(folderWarning),
                                         the<QLineEdit>(packagesField),
                                         the<QPushButton>(u"Run"_s),
                                         the<PlainLabel>(u"Output"_s),
                                         pane};
    for (const QWidget *each : leading)
        EXPECT_EQ(place(each).left(), 12) << ByName::nameOf(each).toStdString();
    EXPECT_EQ(place(script).right(), content.width() - 12 - 1);
    EXPECT_EQ(place(pane).right(), content.width() - 12 - 1);
    EXPECT_EQ(place(pane).bottom(), content.height() - 12 - 1);
}

TEST_F(RunViewLayout, SetsItsControlsInRowsNoWiderThanTheyMayBe)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    const auto *label = the<PlainLabel>(u"Machine"_s);
    const auto *picker = the<MachinePicker>(u"Machine"_s);
    const auto *distribution = the<Picker>(u"Distribution"_s);
    const auto gaps = [&] {
        return gapsBeside(content, {label, picker, the<QCheckBox>(u"Disposable mode"_s), distribution});
    };
    Places::expectSoon(gaps, QList<int>({8, 12, 12}));
    EXPECT_EQ(place(picker).right() - place(label).left() + 1, 300);
    EXPECT_EQ(label->width(), label->sizeHint().width()) << "the rest is the picker's";
    EXPECT_EQ(distribution->width(), 100);
    EXPECT_EQ(gapsBeside(content, {the<QPushButton>(u"Share a folder…"_s), the<PlainLabel>(folder),
                                   the<QPushButton>(u"Clear"_s, u"Stop sharing the folder"_s),
                                   the<QCheckBox>(u"10 minute time limit"_s)}),
              QList<int>({12, 12, 12}));
    EXPECT_EQ(the<QLineEdit>(packagesField)->width(), 240);
    EXPECT_EQ(gapsBeside(content, {the<QLineEdit>(packagesField), the<QPushButton>(u"Install packages"_s)}),
              QList<int>{12});
    const auto *clear = the<QPushButton>(u"Clear"_s, u"Clear the output"_s);
    EXPECT_EQ(gapsBeside(content, {the<QPushButton>(u"Copy output"_s), clear}), QList<int>{12});
    EXPECT_EQ(place(clear).right(), content.width() - 12 - 1);
}

TEST_F(RunViewLayout, SetsItsWordsInTheColourAndTypeOfTheirRank)
{
    const QPalette palette = content.palette();
    EXPECT_EQ(the<PlainLabel>(u"Output"_s)->font(), Typography::headline());
    EXPECT_EQ(colourOf(the<PlainLabel>(u"Output"_s)), Colours::primary(palette));
    EXPECT_EQ(the<PlainLabel>(nothingPersists)->font(), Typography::caption());
    EXPECT_EQ(colourOf(the<PlainLabel>(nothingPersists)), Colours::secondary(palette));
    EXPECT_EQ(the<PlainLabel>(folderWarning)->font(), Typography::caption());
    EXPECT_EQ(colourOf(the<PlainLabel>(folderWarning)), Colours::orange(palette));
    EXPECT_EQ(the<PlainLabel>(folder)->font(), Typography::caption());
    EXPECT_EQ(the<PlainLabel>(u"Machine"_s)->font(), Typography::body());
    EXPECT_FALSE(the<PlainLabel>(u"Machine"_s)->isEnabled()) << "dimmed together with its picker";
}

TEST_F(RunViewLayout, ShowsARunWhereItsButtonStood)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system's controls keep distances of their own";
#endif
    toggle(content, u"Disposable mode"_s)->click();
    QCoreApplication::processEvents();
    const QPoint before = place(the<QPushButton>(u"Run"_s)).topLeft();
    window.run.setScript(u"exec sleep 600"_s);
    press(content, u"Run"_s);
    const auto *stop = the<QPushButton>(u"Stop"_s, u"Stop the run"_s);
    const auto *spinner = content.findChild<Spinner *>();
    const auto *phase = the<PlainLabel>(u"Running in box"_s);
    const auto *elapsed = the<PlainLabel>(u"0s"_s);
    Places::expectSoon([&] { return gapsBeside(content, {stop, spinner, phase, elapsed}); }, QList<int>({8, 8, 8}));
    EXPECT_EQ(place(stop).topLeft(), before);
    EXPECT_EQ(spinner->size(), QSize(16, 16));
    for (const QWidget *each : std::initializer_list<const QWidget *>{spinner, phase, elapsed})
        EXPECT_NEAR(place(each).center().y(), place(stop).center().y(), 1);
    EXPECT_EQ(phase->font(), Typography::body());
    EXPECT_EQ(colourOf(phase), Colours::primary(content.palette()));
    EXPECT_EQ(colourOf(elapsed), Colours::secondary(content.palette()));
}

TEST_F(RunViewLayout, SaysBesideRunThatOrbStackMustBeStarted)
{
    window.orbStack.setRunning(false);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    const auto *hint = the<PlainLabel>(startHint);
    const auto *run = the<QPushButton>(u"Run"_s);
    Places::expectSoon([&] { return place(hint).left() - place(run).right() - 1; }, 12);
    EXPECT_NEAR(place(hint).center().y(), place(run).center().y(), 1);
    EXPECT_EQ(hint->font(), Typography::caption());
    EXPECT_EQ(colourOf(hint), Colours::secondary(content.palette()));
}

TEST_F(RunViewLayout, GivesTheOutputTwiceTheHeightOfTheScriptWithinItsBounds)
{
    const auto *script = the<ScriptEditor>(u"Script"_s);
    const auto *output = content.findChild<OutputSection *>();
    int compared = 0;
    for (int height = 640; height <= 1200; height += 20) {
        content.resize(1200, height);
        QCoreApplication::processEvents();
        if (script->height() == script->minimumHeight() || script->height() == script->maximumHeight())
            continue;
        ++compared;
        EXPECT_NEAR(output->height(), 2 * script->height(), 2) << height;
    }
    EXPECT_GT(compared, 3);
    EXPECT_EQ(script->height(), 200);
}
