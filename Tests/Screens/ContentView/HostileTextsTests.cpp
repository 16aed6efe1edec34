// A walk over every widget of every screen, with hostile texts wherever a text from outside is shown: each is shown as
// plain text, nothing asks the network for anything, and the window stays as it is.

#include "Screens/ContentView/RunViewSteps.h"
#include "Screens/TestWindow.h"
#include "Support/HostileTexts.h"

#include <QApplication>
#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTextBrowser>
#include <QTextEdit>
#include <QToolTip>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

/// A place on this computer that markup may name, and that hears whoever asks for it.
class Listener
{
public:
    Listener() : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr *>(&address), size), 0);
        EXPECT_EQ(::listen(m_socket, 8), 0);
        ::getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &size);
        m_port = ntohs(address.sin_port);
    }
    ~Listener() { ::close(m_socket); }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    int port() const { return m_port; }

    bool wasAsked() const
    {
        pollfd entry{m_socket, POLLIN, 0};
        return ::poll(&entry, 1, 0) != 0;
    }

    /// Whether this process has opened any other way to the network.
    bool isAlone() const
    {
        for (int number = 0; number < 256; ++number) {
            sockaddr_storage address = {};
            socklen_t size = sizeof address;
            if (number != m_socket && ::getsockname(number, reinterpret_cast<sockaddr *>(&address), &size) == 0 &&
                (address.ss_family == AF_INET || address.ss_family == AF_INET6))
                return false;
        }
        return true;
    }

private:
    int m_socket;
    int m_port = 0;
};

/// The tool tip that this widget would show, as Qt reads it: without its markup.
void expectPlainToolTip(QWidget &widget)
{
    QHelpEvent event(QEvent::ToolTip, widget.rect().center(), widget.mapToGlobal(widget.rect().center()));
    QCoreApplication::sendEvent(&widget, &event);
    const QString shown = QToolTip::text();
    QToolTip::hideText();
    // Ours are escaped within one pair of marks; any other text must be one that Qt takes as it is.
    const bool isEscaped = shown.startsWith(u"<span>"_s) && shown.count(u'<') == 2;
    EXPECT_TRUE(isEscaped || !Qt::mightBeRichText(shown)) << shown.left(200).toStdString();
}

void expectPlain(QWidget &widget)
{
    SCOPED_TRACE(testing::Message() << widget.metaObject()->className() << ' '
                                    << ByName::nameOf(&widget).left(80).toStdString());
    if (const auto *label = qobject_cast<QLabel *>(&widget)) {
        const bool isPlain = label->textFormat() == Qt::PlainText ||
                             (label->textFormat() == Qt::AutoText && !Qt::mightBeRichText(label->text()));
        EXPECT_TRUE(isPlain) << label->text().left(200).toStdString();
        EXPECT_FALSE(label->openExternalLinks());
    }
    // Two classes read markup wherever they stand.
    EXPECT_EQ(qobject_cast<QTextBrowser *>(&widget), nullptr);
    const auto *editor = qobject_cast<QTextEdit *>(&widget);
    EXPECT_TRUE(editor == nullptr || !editor->acceptRichText());
    if (const auto *box = qobject_cast<QMessageBox *>(&widget)) {
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
    }
    expectPlainToolTip(widget);
}

int expectAllPlain()
{
    int count = 0;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (!window->isVisible())
            continue;
        for (QWidget *widget : window->findChildren<QWidget *>() << window) {
            // A tip of Qt's own may just be going away.
            if (!widget->inherits("QTipLabel") && widget->isVisible()) {
                expectPlain(*widget);
                ++count;
            }
        }
    }
    return count;
}

QByteArray jsonText(const QString &text)
{
    QByteArray result("\"");
    for (const QChar unit : text)
        result += "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    return result + '"';
}

class HostileTextsOnScreen : public testing::TestWithParam<int>
{
protected:
    HostileTextsOnScreen() : text(HostileTexts::all()[GetParam()])
    {
        if (text.contains(u"%1"_s))
            text = text.arg(listener.port());
    }

    /// Everything that comes from outside is this text.
    void fill()
    {
        const QByteArray json = jsonText(text);
        window.orbStack.setRunning(true);
        window.orbStack.setMachineList("[{\"name\":" + json + ",\"state\":" + json + ",\"image\":{\"distro\":" + json +
                                       ",\"version\":" + json + "}}]");
        const QByteArray id = text.isEmpty() ? QByteArray("\"x\"") : json;
        window.orbStack.tools().addFile(u"containers"_s, "{\"ID\":" + id + ",\"Names\":" + json + ",\"Image\":" + json +
                                                             ",\"State\":" + json + ",\"Status\":" + json +
                                                             ",\"Ports\":" + json + "}\n");
        window.orbStack.tools().addFile(u"text"_s, text.toUtf8());
        // Every other call prints the text and fails with it, and so do the operations on machines.
        window.orbStack.tools().addTool(u"docker"_s,
                                        u"cd '%1'; if [ \"$1\" = ps ]; then cat containers; else cat text; cat text "
                                        "1>&2; exit 1; fi"_s.arg(window.orbStack.tools().path(u"."_s)));
        window.history.add({.id = QUuid::createUuid(),
                            .command = text,
                            .machine = text,
                            .exitCode = std::nullopt,
                            .note = text,
                            .date = QDateTime::currentDateTimeUtc(),
                            .duration = 1});
        window.run.setScript(text);
        for (const OutputKind kind : {OutputKind::out, OutputKind::err, OutputKind::info, OutputKind::warn})
            window.run.append(text, kind);
    }

    /// Looks at all that is shown now, at two sizes.
    void walk(ContentView &content, const QSize &least)
    {
        for (const QSize &size : {QSize(820, 640), QSize(1200, 900)}) {
            content.resize(size);
            QTest::qWait(0);
            content.grab();
            EXPECT_EQ(content.size(), size);
            EXPECT_EQ(content.minimumSizeHint().width(), least.width());
            EXPECT_GT(expectAllPlain(), 5);
        }
        EXPECT_FALSE(listener.wasAsked());
        EXPECT_TRUE(listener.isAlone());
    }

    Listener listener;
    TestWindow window;
    QString text;
};

} // namespace

TEST_P(HostileTextsOnScreen, ArePlainAskNobodyAndWidenNothing)
{
    fill();
    ContentView &content = window.show();
    ASSERT_TRUE(waitUntil([this] {
        return !window.machines.machines().isEmpty() && !window.containers.containers().isEmpty();
    }));
    const QSize least = content.minimumSizeHint();
    for (const AppTab tab : allAppTabs) {
        SCOPED_TRACE(rawValue(tab).toStdString());
        content.setTab(tab);
        walk(content, least);
    }

    // What an operation tells.
    ASSERT_TRUE(waitFor(window.containers.action(u"stop"_s, window.containers.containers()[0])));
    ASSERT_TRUE(waitFor(window.containers.logs(window.containers.containers()[0])));
    walk(content, least);
    ASSERT_TRUE(waitUntil([&content] { return !content.findChildren<QDialog *>().isEmpty(); }));
    for (QDialog *sheet : content.findChildren<QDialog *>())
        sheet->reject();

    // What a question says.
    content.setTab(AppTab::machines);
    ASSERT_TRUE(waitFor(window.machines.simple({u"fails"_s, text})));
    QPushButton *remove = nullptr;
    for (QPushButton *button : content.findChildren<QPushButton *>())
        remove = button->isVisible() && ByName::nameOf(button) == u"Delete"_s ? button : remove;
    ASSERT_NE(remove, nullptr);
    remove->click();
    ASSERT_NE(alert(), nullptr);
    walk(content, least);
    alert()->reject();
}

INSTANTIATE_TEST_SUITE_P(Each, HostileTextsOnScreen,
                         testing::Range(0, static_cast<int>(HostileTexts::all().size())));
