#include "ContentView/SetupHeader.h"
#include "Look/Colours.h"
#include "Look/LogBox.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/StatusDot.h"
#include "Look/Typography.h"
#include "Screens/TestWindow.h"

#include <QProgressBar>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

namespace
{

const auto site = u"Homebrew was not found, so the app will not install anything. Get OrbStack from orbstack.dev (free "
                  "for personal use), then come back here."_s;
const auto what =
    u"OrbStack runs real Linux machines on your Mac. It is free for personal use. After installing, it may "
    "ask to be opened once to finish its setup."_s;
const auto tooOld = u"OrbStack needs macOS 14 or later. This Mac is older, so the sandbox cannot run here."_s;

const SetupHeader &headerOf(const ContentView &content)
{
    return *content.findChild<SetupHeader *>();
}

StatusDot::Colour dotColour(const QWidget &header, const QString &title)
{
    const auto *dot = find<StatusDot>(header, title);
    EXPECT_NE(dot, nullptr) << "no circle says " << title.toStdString();
    return dot == nullptr ? StatusDot::Colour::grey : dot->colour();
}

QColor textColour(const QWidget &header, const QString &text)
{
    const auto *label = find<PlainLabel>(header, text);
    EXPECT_NE(label, nullptr) << "nothing says " << text.toStdString();
    return label == nullptr ? QColor() : label->palette().color(QPalette::WindowText);
}

QList<NoteText *> visibleNotes(const SetupHeader &header)
{
    QList<NoteText *> notes = header.findChildren<NoteText *>();
    notes.removeIf([](const NoteText *note) { return !note->isVisible(); });
    return notes;
}

bool holdsOnlyTheStatusRow(const SetupHeader &header)
{
    return find<QProgressBar>(header, u"In progress"_s) == nullptr && find<LogBox>(header, u"Setup log"_s) == nullptr &&
           visibleNotes(header).isEmpty() && !shows(header, site) && !shows(header, what) && !shows(header, tooOld);
}

} // namespace

TEST(SetupHeader, OffersStartWhileStillChecking)
{
    TestWindow window;
    SetupHeader header(window.setup);
    header.show();
    EXPECT_EQ(dotColour(header, u"Checking…"_s), StatusDot::Colour::grey);
    EXPECT_NE(find<PlainLabel>(header, u"Checking…"_s), nullptr);
    EXPECT_TRUE(isOffered(header, u"Start"_s, u"Start OrbStack"_s));
    EXPECT_FALSE(isOffered(header, u"Stop"_s, u"Stop OrbStack"_s));
    EXPECT_TRUE(shows(header, u"Stop"_s));
    EXPECT_TRUE(holdsOnlyTheStatusRow(header));
}

TEST(SetupHeader, OffersTheWebsiteWithoutHomebrew)
{
    TestWindow window;
    window.orbStack.tools().removeTool(u"orb"_s);
    QString opened;
    QObject::connect(&window.setup, &SetupController::siteRequested,
                     [&opened](const QString &address) { opened = address; });
    const SetupHeader &header = headerOf(window.show());
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::notInstalled; }));
    EXPECT_EQ(dotColour(header, u"OrbStack not installed"_s), StatusDot::Colour::red);
    EXPECT_EQ(textColour(header, site), Colours::secondary(header.palette()));
    EXPECT_FALSE(shows(header, u"Install OrbStack"_s));
    EXPECT_FALSE(shows(header, u"Start"_s));
    EXPECT_FALSE(shows(header, u"Stop"_s));
    EXPECT_EQ(find<QProgressBar>(header, u"In progress"_s), nullptr);
    press(header, u"Get OrbStack"_s);
    EXPECT_EQ(opened, u"https://orbstack.dev"_s);
}

TEST(SetupHeader, ShowsAnInstallationWithItsGrowingLog)
{
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.removeTool(u"orb"_s);
    tools.addTool(u"brew"_s, u"echo first; while [ ! -e '%1' ]; do sleep 0.02; done; echo second; exec sleep 600"_s.arg(
                                 tools.path(u"go"_s)));
    const SetupHeader &header = headerOf(window.show());
    ASSERT_TRUE(waitUntil([&] { return shows(header, what); }));
    EXPECT_FALSE(shows(header, u"Get OrbStack"_s));
    press(header, u"Install OrbStack"_s);

    EXPECT_FALSE(isOffered(header, u"Install OrbStack"_s));
    EXPECT_TRUE(shows(header, u"Install OrbStack"_s));
    EXPECT_NE(find<QProgressBar>(header, u"In progress"_s), nullptr);
    EXPECT_TRUE(isOffered(header, u"Cancel"_s));
    const auto *note = header.findChild<NoteText *>();
    EXPECT_EQ(note->shownText(), u"Installing OrbStack with Homebrew…"_s);
    EXPECT_TRUE(note->isVisible());
    EXPECT_EQ(ByName::nameOf(note), u"Installing OrbStack with Homebrew…"_s);

    const auto *log = header.findChild<LogBox *>();
    EXPECT_TRUE(waitUntil([&] { return log->shownText() == u"$ brew install --cask orbstack\nfirst\n"_s; }));
    EXPECT_TRUE(log->isVisible());
    EXPECT_EQ(ByName::nameOf(log), u"Setup log"_s);
    EXPECT_EQ(log->height(), 90);
    tools.addTool(u"go"_s, {});
    QFile(tools.path(u"go"_s)).open(QIODevice::WriteOnly);
    EXPECT_TRUE(waitUntil([&] { return log->shownText().endsWith(u"first\nsecond\n"_s); }));

    press(header, u"Cancel"_s);
    EXPECT_TRUE(waitUntil([&] { return note->shownText() == u"Install cancelled."_s; }));
    EXPECT_TRUE(waitUntil([&] { return isOffered(header, u"Install OrbStack"_s); }));
    EXPECT_FALSE(shows(header, u"Cancel"_s));
}

TEST(SetupHeader, ShowsAStoppedOrbStack)
{
    TestWindow window;
    const SetupHeader &header = headerOf(window.show());
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_EQ(dotColour(header, u"OrbStack stopped"_s), StatusDot::Colour::orange);
    EXPECT_TRUE(isOffered(header, u"Start"_s));
    EXPECT_FALSE(isOffered(header, u"Stop"_s));
    EXPECT_TRUE(holdsOnlyTheStatusRow(header));
}

TEST(SetupHeader, ShowsAStartUntilItIsCancelled)
{
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.addTool(u"orb"_s, u"[ \"$1\" = start ] && exec sleep 600; echo Stopped"_s);
    const SetupHeader &header = headerOf(window.show());
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    press(header, u"Start"_s, u"Start OrbStack"_s);
    EXPECT_EQ(dotColour(header, u"OrbStack starting…"_s), StatusDot::Colour::yellow);
    EXPECT_FALSE(isOffered(header, u"Start"_s));
    EXPECT_FALSE(isOffered(header, u"Stop"_s));
    EXPECT_TRUE(isOffered(header, u"Cancel"_s));
    press(header, u"Cancel"_s);
    EXPECT_TRUE(waitUntil([&] { return shows(header, u"Cancelled."_s); }));
    EXPECT_EQ(dotColour(header, u"OrbStack stopped"_s), StatusDot::Colour::orange);
}

TEST(SetupHeader, ShowsARunningOrbStackAndStopsIt)
{
    TestWindow window;
    const SetupHeader &header = headerOf(window.showRunning({u"box"_s}));
    EXPECT_EQ(dotColour(header, u"OrbStack running"_s), StatusDot::Colour::green);
    EXPECT_FALSE(isOffered(header, u"Start"_s));
    EXPECT_TRUE(isOffered(header, u"Stop"_s));
    EXPECT_TRUE(holdsOnlyTheStatusRow(header));
    press(header, u"Stop"_s, u"Stop OrbStack"_s);
    EXPECT_TRUE(shows(header, u"Stopping OrbStack…"_s));
    EXPECT_FALSE(isOffered(header, u"Stop"_s));
    EXPECT_TRUE(waitUntil([&] { return shows(header, u"OrbStack stopped"_s); }));
    EXPECT_TRUE(holdsOnlyTheStatusRow(header));
}

TEST(SetupHeader, WarnsOfAnOldSystemAndStillOffersTheButtons)
{
    TestWindow window(false);
    const SetupHeader &header = headerOf(window.showRunning({}));
    EXPECT_EQ(textColour(header, tooOld), Colours::red(header.palette()));
    EXPECT_TRUE(isOffered(header, u"Stop"_s));
    window.orbStack.tools().removeTool(u"orb"_s);
    EXPECT_TRUE(waitFor(window.setup.refresh()));
    EXPECT_TRUE(shows(header, tooOld));
    EXPECT_FALSE(shows(header, site));
    EXPECT_TRUE(isOffered(header, u"Get OrbStack"_s));
}

TEST(SetupHeader, HandsTheKeyboardFromAButtonThatGoesToOneThatCanBePressed)
{
    TestWindow window;
    window.orbStack.tools().addTool(u"orb"_s, u"[ \"$1\" = start ] && exec sleep 600; echo Stopped"_s);
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    find<QAbstractButton>(content, u"Start"_s)->setFocus();
    QTest::keyClick(content.focusWidget(), Qt::Key_Space);
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Cancel"_s);
    QTest::keyClick(content.focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::stopped; }));
    EXPECT_EQ(ByName::nameOf(content.focusWidget()), u"Start"_s);
}

TEST(SetupHeader, ShowsAnyFailureAsPlainTextOfBoundedSize)
{
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.addTool(u"orb"_s,
                  u"case $1 in status) echo Running;; stop) printf '<b>bold</b> '; head -c 1000000 /dev/zero | "
                  "tr '\\0' x; exit 1;; list) echo '[]';; esac"_s);
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([&] { return window.setup.state() == OrbState::running; }));
    press(headerOf(content), u"Stop"_s);
    const NoteText *note = nullptr;
    ASSERT_TRUE(waitUntil([&] {
        note = headerOf(content).findChild<NoteText *>();
        return note != nullptr && note->shownText().size() > 1000000;
    }));
    EXPECT_TRUE(note->shownText().startsWith(u"Stop failed: <b>bold</b> xxx"_s));
    QTest::qWait(0);
    EXPECT_LE(note->height(), 120);
    EXPECT_LE(ByName::nameOf(note).size(), 501);
    EXPECT_EQ(content.minimumSizeHint().width() <= 820, true);
    content.resize(820, 640);
    EXPECT_EQ(content.size(), QSize(820, 640));
}

TEST(SetupHeader, SetsItsElementsOneBelowTheOther)
{
    TestWindow window;
    TestTools &tools = window.orbStack.tools();
    tools.removeTool(u"orb"_s);
    tools.addTool(u"brew"_s, u"echo first; exec sleep 600"_s);
    ContentView &content = window.show();
    content.resize(820, 640);
    const SetupHeader &header = headerOf(content);
    ASSERT_TRUE(waitUntil([&] { return shows(header, what); }));
    press(header, u"Install OrbStack"_s);
    const auto *log = header.findChild<LogBox *>();
    ASSERT_TRUE(waitUntil([&] { return log->isVisible() && log->shownText().endsWith(u"first\n"_s); }));
    QCoreApplication::sendPostedEvents();

    const auto *dot = find<StatusDot>(header, u"OrbStack not installed"_s);
    const auto *title = find<PlainLabel>(header, u"OrbStack not installed"_s);
    EXPECT_EQ(dot->size(), QSize(12, 12));
    EXPECT_EQ(title->x() - dot->geometry().right() - 1, 10);
    EXPECT_LE(std::abs(title->geometry().center().y() - dot->geometry().center().y()), 1);
    EXPECT_EQ(title->font(), Typography::headline());
    const auto *install = find<QAbstractButton>(header, u"Install OrbStack"_s);
    EXPECT_EQ(install->geometry().right(), header.contentsRect().right() - 12) << "pushed to the trailing edge";

    const auto *explanation = find<PlainLabel>(header, what);
    EXPECT_EQ(explanation->font(), Typography::callout());
    EXPECT_GE(explanation->height(), explanation->heightForWidth(explanation->width())) << "nothing is cut off";
    const auto *note = header.findChild<NoteText *>();
    EXPECT_EQ(note->font(), Typography::callout());
    EXPECT_EQ(note->palette().color(QPalette::Text), Colours::secondary(header.palette()));
    EXPECT_EQ(QFontInfo(log->font()).pixelSize(), 11);
    EXPECT_TRUE(QFontInfo(log->font()).fixedPitch());
    EXPECT_EQ(log->width(), header.width() - 24);
    const QWidget *bar = find<QProgressBar>(header, u"In progress"_s);
    const auto top = [&header](const QWidget *widget) { return widget->mapTo(&header, QPoint()).y(); };
    EXPECT_LT(top(title), top(explanation));
    EXPECT_LT(top(explanation), top(bar));
    EXPECT_LT(top(bar), top(note));
    EXPECT_LT(top(note), top(log));
    EXPECT_LE(top(log) + log->height() + 12, header.height());
}
