#pragma once

// An `orb` that behaves as OrbStack's does for as much as the window needs, made of files that a test may change at any
// moment. A machine's shell is this host's.

#include "Support/TestTools.h"

#include <QFile>

class FakeOrbStack
{
public:
    /// The arguments of the calls that ask how things are, for calls().
    static inline const QString statusCall = QStringLiteral("<status>");
    static inline const QString listCall = QStringLiteral("<list><-f><json>");

    FakeOrbStack()
    {
        using namespace Qt::StringLiterals;
        setRunning(false);
        setMachines({});
        m_tools.addTool(u"orb"_s, u"cd '%1' || exit 1\n"
                                  "case \"$1\" in\n"
                                  "status) cat state ;;\n"
                                  "start) if [ -z \"$2\" ]; then echo starting; printf Running > state; fi ;;\n"
                                  "stop) if [ -z \"$2\" ]; then printf Stopped > state; fi ;;\n"
                                  "list) [ \"$2\" = -f ] && cat machines ;;\n"
                                  "create) echo \"made $3\" ;;\n"
                                  "delete) ;;\n"
                                  "-m) exec sh -s ;;\n"
                                  "esac\n"_s.arg(m_tools.path(u"."_s)));
        m_tools.addTool(u"docker"_s, u"true"_s);
    }

    TestTools &tools() { return m_tools; }

    void setRunning(bool isRunning)
    {
        using namespace Qt::StringLiterals;
        write(u"state"_s, isRunning ? "Running" : "Stopped");
    }

    /// The text that `orb list -f json` prints.
    void setMachineList(const QByteArray &json)
    {
        using namespace Qt::StringLiterals;
        write(u"machines"_s, json);
    }

    /// Machines of these names, all running Ubuntu.
    void setMachines(const QStringList &names)
    {
        QByteArrayList records;
        for (const QString &name : names)
            records.append("{\"name\":\"" + name.toUtf8() +
                           "\",\"state\":\"running\",\"image\":{\"distro\":\"ubuntu\",\"version\":\"noble\"}}");
        setMachineList('[' + records.join(',') + ']');
    }

    /// How often `orb` was called with exactly these arguments ("<list><-f><json>").
    qsizetype calls(const QString &arguments) const { return m_tools.calls(QStringLiteral("orb")).count(arguments); }

private:
    void write(const QString &name, const QByteArray &content)
    {
        // Replaced as a whole: the tool may be reading it.
        QFile file(m_tools.path(name + QStringLiteral(".new")));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write(content);
            file.close();
        }
        std::rename(file.fileName().toUtf8().constData(), m_tools.path(name).toUtf8().constData());
    }

    TestTools m_tools;
};
