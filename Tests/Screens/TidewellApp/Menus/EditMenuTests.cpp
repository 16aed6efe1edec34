#include "Look/LogBox.h"
#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/Menus/MenuActions.h"
#include "TidewellApp/HelpWindow.h"
#include "TidewellApp/MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTextBrowser>

using namespace Qt::StringLiterals;

namespace
{

class EditMenuTest : public testing::Test
{
protected:
    EditMenuTest()
    {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAction *edit(const QString &label) { return MenuActions::action(window, u"Edit"_s, label); }

    /// What can be done with what has the focus.
    QStringList offered()
    {
        QStringList labels;
        for (const QString &label :
             {u"Undo"_s, u"Redo"_s, u"Cut"_s, u"Copy"_s, u"Paste"_s, u"Select All"_s, u"Find…"_s}) {
            if (edit(label)->isEnabled())
                labels.append(label);
        }
        return labels;
    }

    TestWindow tools;
    MainWindow window{tools.controllers()};
};

} // namespace

TEST_F(EditMenuTest, CopiesFromAPageToReadAndOffersNothingThatWouldChangeIt)
{
    HelpWindow::show(window);
    auto *page = window.findChild<QTextBrowser *>();
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(waitUntil([page] { return QApplication::activeWindow() == page; }));
    page->setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(offered(), QStringList{u"Select All"_s});
    edit(u"Select All"_s)->trigger();
    EXPECT_EQ(offered(), QStringList({u"Copy"_s, u"Select All"_s}));
    edit(u"Copy"_s)->trigger();
    EXPECT_TRUE(QApplication::clipboard()->text().contains(u"Try shell scripts in real Linux machines"_s));
    page->moveCursor(QTextCursor::Start);
    EXPECT_EQ(offered(), QStringList{u"Select All"_s});
}

TEST_F(EditMenuTest, CopiesFromALogAndOffersNothingThatWouldChangeIt)
{
    window.content().setTab(AppTab::machines);
    EXPECT_TRUE(waitFor(tools.machines.create(Distro::ubuntu, u"NO"_s)));
    auto *log = ByName::find<LogBox>(window, u"Machine log"_s);
    ASSERT_NE(log, nullptr);
    log->setFocus();
    EXPECT_EQ(offered(), QStringList{u"Select All"_s});
    edit(u"Select All"_s)->trigger();
    EXPECT_EQ(offered(), QStringList({u"Copy"_s, u"Select All"_s}));
}

TEST_F(EditMenuTest, LooksAgainWhenItIsOpened)
{
    auto *field = ByName::find<QLineEdit>(window, u"Packages, e.g. git curl"_s);
    field->setFocus();
    EXPECT_EQ(offered(), QStringList({u"Paste"_s, u"Select All"_s}));
    field->setReadOnly(true);
    auto *menu = qobject_cast<QMenu *>(edit(u"Paste"_s)->associatedObjects().first());
    ASSERT_NE(menu, nullptr);
    Q_EMIT menu->aboutToShow();
    EXPECT_EQ(offered(), QStringList{u"Select All"_s});
}

TEST_F(EditMenuTest, OffersToFindOnlyInAWindowWithOutput)
{
    tools.run.append(u"some output\n"_s, OutputKind::out);
    EXPECT_TRUE(offered().contains(u"Find…"_s));
    HelpWindow::show(window);
    auto *page = window.findChild<QTextBrowser *>();
    ASSERT_TRUE(waitUntil([page] { return QApplication::activeWindow() == page; }));
    EXPECT_FALSE(offered().contains(u"Find…"_s));
    window.activateWindow();
    ASSERT_TRUE(waitUntil([this] { return QApplication::activeWindow() == &window; }));
    EXPECT_TRUE(offered().contains(u"Find…"_s));
}
