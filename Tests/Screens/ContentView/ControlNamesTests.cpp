// What a screen reader calls the controls of each screen: all of them, in the order of the Tab key.

#include "Screens/KeyboardWalk.h"

#include "Screens/ContentView/Screens/ContainersViewTest.h"
#include "Screens/ContentView/Screens/Run/RunViewSteps.h"

namespace
{

class ControlNames : public ContainersViewTest
{
protected:
    /// From the header on, each with its description if that says more.
    QStringList names(AppTab tab)
    {
        window.content().setTab(tab);
        find<QPushButton>(window.content(), u"Stop"_s, u"Stop OrbStack"_s)->setFocus();
        QStringList all;
        for (const QWidget *widget : KeyboardWalk::stops(window.content(), Qt::Key_Tab)) {
            const QString name = ByName::nameOf(widget);
            const QString description = ByName::descriptionOf(widget);
            all.append(description.isEmpty() || description == name ? name : name + u" ("_s + description + u')');
        }
        return all;
    }
};

} // namespace

TEST_F(ControlNames, OfTheRunScreen)
{
    show();
    window.run.setScript(u"true"_s);
    window.content().setTab(AppTab::run);
    find<QLineEdit>(window.content(), packagesField)->setText(u"git"_s);
    shareFolder(window.content(), tools().directory(0));
    EXPECT_EQ(names(AppTab::run),
              QStringList({u"Stop (Stop OrbStack)"_s, u"Run"_s, u"Script"_s, u"Machine"_s, u"Disposable mode"_s,
                           u"Share a folder…"_s, u"Clear (Stop sharing the folder)"_s, u"10 minute time limit"_s,
                           packagesField, u"Install packages"_s, u"Run"_s, u"Copy output"_s,
                           u"Clear (Clear the output)"_s, u"Output (Output appears here.)"_s}));
}

TEST_F(ControlNames, OfTheMachines)
{
    show();
    window.content().setTab(AppTab::machines);
    find<QLineEdit>(window.content(), u"Name (e.g. scratch)"_s)->setText(u"scratch"_s);
    EXPECT_EQ(names(AppTab::machines),
              QStringList({u"Stop (Stop OrbStack)"_s, u"Machines"_s, u"Distro"_s, u"Name (e.g. scratch)"_s,
                           u"Create (Create a machine)"_s, u"Stop (Stop box)"_s, u"Delete (Delete box)"_s}));
}

TEST_F(ControlNames, OfTheHistory)
{
    show();
    HistoryEntry entry;
    entry.id = QUuid::createUuid();
    entry.command = u"uptime"_s;
    window.history.add(entry);
    EXPECT_EQ(names(AppTab::history),
              QStringList({u"Stop (Stop OrbStack)"_s, u"History"_s, u"Clear all (Delete all entries of the history)"_s,
                           u"Load (Load uptime)"_s, u"Delete (Delete uptime)"_s}));
}

TEST_F(ControlNames, OfTheContainers)
{
    setContainers(lineOf(u"web"_s, u"running"_s));
    show();
    image().setText(u"nginx"_s);
    EXPECT_EQ(
        names(AppTab::containers),
        QStringList({u"Stop (Stop OrbStack)"_s, u"Containers"_s, u"Refresh (List the containers again)"_s,
                     u"Image (nginx:latest)"_s, u"Ports (8080:80)"_s, u"Name (optional)"_s, u"Run (Run a container)"_s,
                     u"Stop (Stop web)"_s, u"Logs (Logs web)"_s, u"Remove (Remove web)"_s}));
}
