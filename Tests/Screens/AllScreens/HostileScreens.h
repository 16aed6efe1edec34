#pragma once

// The main window over tools that print one text wherever they can, with this text in every place where a user's own
// may stand; and what a walk through all of it finds.

#include "ContentView/ContentView.h"
#include "Screens/AllScreens/Bait.h"
#include "Screens/AllScreens/TextWalk.h"
#include "Screens/TestWindow.h"
#include "Support/ProcessLevels.h"
#include "TidewellApp/MainWindow.h"

#include <gtest/gtest.h>

#include <optional>

/// A text that tries to be more than a text.
struct HostileText {
    const char *name;
    QString text;
    /// As a tool prints it, where that differs.
    QByteArray printed = {};
};

/// Every kind once, with the mark of the walk. %1 is the path of a picture, %2 a port of this computer.
inline QList<HostileText> allHostileTexts()
{
    using namespace Qt::StringLiterals;
    const QString half = u"a\U0001F433"_s.chopped(1); // a whale's first half behind the letter
    return {
        {"a picture in a file", u"<img src=\"file://%1\">hostile"_s},
        {"a picture of the network", u"<img src=\"http://127.0.0.1:%2/a.png\">hostile"_s},
        {"a link", u"<a href=\"http://127.0.0.1:%2/\">hostile</a>"_s},
        {"markup", u"<b>hostile"_s},
        {"markup in a long text", u"<h1>hostile"_s + u" word"_s.repeated(400)},
        {"signs written out", u"hostile&amp;&lt;b&gt;&#65;"_s},
        {"mnemonics", u"&hostile && &File"_s},
        {"marks of the toolkit's own", u"hostile[*] %3 \ufffc|"_s},
        {"marks that turn the direction", u"\u202ehostile\u2066exe.gpj\u2069\u202c"_s},
        {"a NUL and codes for a terminal", u"hostile\u0000end\u001b[2J\u0007\u009b31m"_s},
        {"a word of 100,000 letters", u"hostile"_s + u"W"_s.repeated(100'000)},
        {"half a character", u"hostile"_s + half + u"end"_s,
         "hostilea\xed\xa0\xbd"
         "end"},
    };
}

class HostileScreens
{
public:
    explicit HostileScreens(const HostileText &hostile)
    {
        using namespace Qt::StringLiterals;
        m_text = hostile.text;
        m_text.replace(u"%1"_s, m_bait.path()).replace(u"%2"_s, QString::number(m_bait.port()));
        const QByteArray printed = hostile.printed.isEmpty() ? m_text.toUtf8() : hostile.printed;
        files().addFile(u"text"_s, printed);
        const QByteArray json = inJson(printed);
        FakeOrbStack &orbStack = m_below.orbStack;
        orbStack.setRunning(true);
        orbStack.setMachineList("[{\"name\":" + json + ",\"state\":" + json + ",\"image\":{\"distro\":" + json +
                                ",\"version\":" + json + "}}]");
        files().addFile(u"containers"_s, "{\"ID\":" + json + ",\"Names\":" + json + ",\"Image\":" + json +
                                             ",\"State\":" + json + ",\"Status\":" + json + ",\"Ports\":" + json +
                                             "}\n");
        // What is asked of a machine or a container waits while there is a file "hold", and then fails with the text.
        const QString tool = u"cd '%1' || exit 1\n"
                             "tell() { cat text; cat text >&2; exit 1; }\n"
                             "linger() { while [ -e hold ]; do sleep 0.01; done; }\n"
                             "fail() { [ ! -e fail ] || tell; }\n"_s.arg(files().path(u"."_s));
        files().addTool(u"orb"_s, tool + u"case \"$1 $2\" in\n"
                                         "'status '*) cat state ;;\n"
                                         "'start ') cat text; linger ;;\n"
                                         "list*) fail; [ \"$2\" = -f ] && cat machines ;;\n"
                                         "-m*) cat text; cat text >&2; linger ;;\n"
                                         "*) linger; tell ;;\n"
                                         "esac\n"_s);
        files().addTool(u"docker"_s, tool + u"[ \"$1\" != ps ] || { fail; exec cat containers; }; linger; tell\n"_s);
        m_below.run.setScript(m_text);
        m_window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
        EXPECT_TRUE(waitUntil(
            [this] { return m_below.machines.machines().size() == 1 && m_below.containers.containers().size() == 1; }));
        m_size = m_window.size();
    }

    ~HostileScreens() { release(); }

    HostileScreens(const HostileScreens &) = delete;
    HostileScreens &operator=(const HostileScreens &) = delete;

    const QString &text() const { return m_text; }
    /// No tool starts with a NUL in an argument.
    bool hasNul() const { return m_text.contains(QChar(0)); }
    MainWindow &window() { return m_window; }
    TestWindow &below() { return m_below; }
    Controllers controllers() { return m_below.controllers(); }
    QString machine() const { return m_below.machines.machines()[0].name; }
    ContainerInfo container() const { return m_below.containers.containers()[0]; }

    /// What is begun from now on goes on until it is released.
    void hold() { files().addFile(QStringLiteral("hold")); }
    void release() { QFile::remove(files().path(QStringLiteral("hold"))); }
    /// Lists fail from now on; none that was asked for before is still to come.
    void failLists()
    {
        EXPECT_TRUE(waitUntil(ProcessLevels::hasNoChild));
        files().addFile(QStringLiteral("fail"));
    }

    /// Walks through all that is shown now. Widgets of these classes must be among those that hold the text.
    void expectAsItIs(const QStringList &classes)
    {
        // What was laid out, asked for or begun by showing it, too.
        m_window.grab();
        QCoreApplication::processEvents();
        const QSet<QString> found = TextWalk::through(m_text);
        for (const QString &name : classes)
            EXPECT_TRUE(found.contains(name)) << "in no " << name.toStdString();
        EXPECT_EQ(m_window.size(), m_size);
        EXPECT_FALSE(m_bait.wasTaken());
    }

private:
    TestTools &files() { return m_below.orbStack.tools(); }

    /// As a tool writes it that knows of no encoding.
    static QByteArray inJson(const QByteArray &text)
    {
        QByteArray json("\"");
        for (const char byte : text) {
            if (byte == '"' || byte == '\\')
                json += '\\';
            if (static_cast<unsigned char>(byte) < 0x20)
                json += "\\u00" + QByteArray::number(byte, 16).rightJustified(2, '0');
            else
                json += byte;
        }
        return json + '"';
    }

    Bait m_bait;
    QString m_text;
    TestWindow m_below;
    MainWindow m_window{m_below.controllers()};
    QSize m_size;
};
