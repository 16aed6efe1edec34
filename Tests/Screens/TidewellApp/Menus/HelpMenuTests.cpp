#include "Look/Typography.h"
#include "Screens/EventCount.h"
#include "Screens/TestWindow.h"
#include "Screens/TidewellApp/Menus/MenuActions.h"
#include "TidewellApp/MainWindow.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

using namespace Qt::StringLiterals;
using MenuActions::action;

TEST(Menus, OpenTheWebsiteAndTheAboutBoxWithoutBlocking)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    QString opened;
    QObject::connect(&tools.setup, &SetupController::siteRequested, [&opened](const QString &site) { opened = site; });
    action(window, u"Help"_s, u"OrbStack Website"_s)->trigger();
    EXPECT_EQ(opened, u"https://orbstack.dev"_s);
    action(window, u"Help"_s, u"About Tidewell"_s)->trigger();
    const auto *about = window.findChild<QMessageBox *>();
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isVisible());
    EXPECT_EQ(about->textFormat(), Qt::PlainText);
    EXPECT_EQ(about->text(), u"Tidewell "_s + QCoreApplication::applicationVersion());
    EXPECT_EQ(about->informativeText(), u"Try shell scripts in real Linux machines instead of on your Mac."_s);
}

TEST(Menus, ShowAboutByItselfWhileTheWindowIsHidden)
{
    TestWindow tools;
    const MainWindow window(tools.controllers());
    action(window, u"Help"_s, u"About Tidewell"_s)->trigger();
    QWidget *about = QApplication::activeModalWidget();
    ASSERT_TRUE(waitUntil([&about] {
        for (QWidget *each : QApplication::topLevelWidgets()) {
            if (qobject_cast<QMessageBox *>(each) != nullptr && each->isVisible())
                about = each;
        }
        return about != nullptr;
    }));
    EXPECT_EQ(about->parentWidget(), nullptr);
    about->close();
}

TEST(Menus, HelpShowsTheReadmeInAWindowOfItsOwn)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    const auto pages = window.findChildren<QTextBrowser *>();
    ASSERT_EQ(pages.size(), 1) << "a second request brings the first window forward";
    EXPECT_TRUE(pages.first()->isVisible());
    EXPECT_EQ(pages.first()->windowTitle(), u"Tidewell Help"_s);
    EXPECT_EQ(pages.first()->size(), QSize(680, 720));
    EXPECT_TRUE(pages.first()->openExternalLinks());
    EXPECT_FALSE(pages.first()->toPlainText().contains(QChar::ObjectReplacementCharacter)) << "no picture is missing";
    EXPECT_TRUE(pages.first()->toPlainText().contains(u"Try shell scripts in real Linux machines"_s));
}

TEST(Menus, HelpBeginsAtItsBeginningAndHasNoLinkThatLeadsNowhere)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    const auto *page = window.findChild<QTextBrowser *>();
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(waitUntil([page] { return page->verticalScrollBar()->maximum() > 0; }));
    EXPECT_EQ(page->verticalScrollBar()->value(), 0);
    EXPECT_EQ(page->textCursor().position(), 0);
    EXPECT_EQ(page->font(), Typography::body());
    EXPECT_EQ(page->document()->documentMargin(), 16);
    int links = 0;
    for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QString target = piece.fragment().charFormat().anchorHref();
            links += !target.isEmpty();
            EXPECT_TRUE(target.isEmpty() || target.startsWith(u"https://"_s)) << target.toStdString();
        }
    }
    EXPECT_GT(links, 0);
}

TEST(Menus, HelpKeepsTheWordsOfALinkThatLeadsToAFile)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    const QString shown = window.findChild<QTextBrowser *>()->toPlainText().simplified();
    QFile readme(u":/README.md"_s);
    ASSERT_TRUE(readme.open(QIODevice::ReadOnly));
    const QRegularExpression link(uR"((?<!!)\[([\w ./]+)\]\((?!https?:))"_s);
    int links = 0;
    for (const QRegularExpressionMatch &each : link.globalMatch(QString::fromUtf8(readme.readAll()))) {
        ++links;
        EXPECT_TRUE(shown.contains(each.captured(1).simplified())) << each.captured(1).toStdString();
    }
    EXPECT_GT(links, 0);
}

TEST(Menus, HelpTakesTheKeyboardFromTheScriptSoThatItsTextCanBeCopied)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    ByName::find<QWidget>(window, u"Script"_s)->setFocus();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    auto *page = window.findChild<QTextBrowser *>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page));
    EXPECT_TRUE(waitUntil([&] { return QApplication::focusWidget() == page; }));
    page->selectAll();
    QAction *edit = window.menuBar()->actions().at(1);
    Q_EMIT edit->menu()->aboutToShow();
    EXPECT_TRUE(action(window, u"Edit"_s, u"Copy"_s)->isEnabled());
}

TEST(Menus, HelpComesForwardWhenAskedForAgainAndIsClosedByItsShortcut)
{
    TestWindow tools;
    MainWindow window(tools.controllers());
    window.show();
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    const QPointer<QTextBrowser> page = window.findChild<QTextBrowser *>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page));
    EXPECT_EQ(ByName::nameOf(page), u"Tidewell Help"_s);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const EventCount raised(*page, QEvent::ZOrderChange);
    action(window, u"Help"_s, u"Tidewell Help"_s)->trigger();
    EXPECT_GT(raised.count(), 0);
    ASSERT_TRUE(QTest::qWaitForWindowActive(page));
    QTest::keySequence(page, QKeySequence::Close);
    EXPECT_TRUE(waitUntil([&page] { return page.isNull(); }));
    EXPECT_TRUE(window.isVisible());
}
