#pragma once

// What all tests of runs share: a fake `orb` with a body for each step, and the transcript told as texts.

#include "RunController/RunController.h"

#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

inline QString nameOf(OutputKind kind)
{
    return QStringList{QStringLiteral("out"), QStringLiteral("err"),  QStringLiteral("info"),
                       QStringLiteral("ok"),  QStringLiteral("fail"), QStringLiteral("warn")}
        .at(static_cast<int>(kind));
}

/// The transcript, one text a segment: "info: $ orb -m dev bash -s\n". Elapsed times are told as "Ns", and the name of
/// a disposable machine as "sbx-NNNNNN".
inline QStringList told(const RunController &run)
{
    static const QRegularExpression elapsed(QStringLiteral(" · [0-9]+\\.[0-9]s\\n"));
    static const QRegularExpression disposable(QStringLiteral("sbx-[0-9a-f]{6}\\b"));
    QStringList texts;
    for (std::size_t index = 0; index < run.transcript().segmentCount(); ++index) {
        const OutputSegment segment = run.transcript().segment(index);
        QString text = nameOf(segment.kind) + QStringLiteral(": ") + segment.text;
        texts << text.replace(elapsed, QStringLiteral(" · Ns\n")).replace(disposable, QStringLiteral("sbx-NNNNNN"));
    }
    return texts;
}

/// A controller with far-away limits over a fake `orb`, and a history in memory.
class RunControllerTest : public testing::Test
{
protected:
    RunControllerTest()
    {
        QObject::connect(&run, &RunController::phaseChanged, &run, [this] {
            if (!run.phase().isEmpty())
                phases << run.phase();
        });
    }

    /// An `orb` with these bodies for create, delete and a run; a run by default is a real shell.
    void addOrb(const QString &create = QStringLiteral(":"), const QString &remove = QStringLiteral(":"),
                const QString &script = QStringLiteral("shift 3; exec sh -s"))
    {
        tools.addTool(QStringLiteral("orb"), QStringLiteral("case $1 in\ncreate) ") + create +
                                                 QStringLiteral(";;\ndelete) ") + remove + QStringLiteral(";;\n-m) ") +
                                                 script + QStringLiteral(";;\nesac"));
    }

    bool waitUntilIdle()
    {
        return waitUntil([this] { return !run.isRunning(); });
    }

    bool waitForCall(qsizetype number)
    {
        return waitUntil([this, number] { return calls().size() >= number; });
    }

    QStringList calls() const { return tools.calls(QStringLiteral("orb")); }

    TestTools tools;
    const RunTimeLimits limits{.creation = farLimit, .script = farLimit, .deletion = farLimit};
    HistoryStore history{std::nullopt};
    RunController run{limits};
    QStringList phases;
    const RunJob job{.script = QStringLiteral("echo hello"),
                     .label = QStringLiteral("a label"),
                     .machine = QStringLiteral("dev"),
                     .distro = QStringLiteral("ubuntu"),
                     .folder = std::nullopt,
                     .timeoutEnabled = false};
    const RunJob disposableJob{.script = QStringLiteral("echo hello"),
                               .label = QStringLiteral("a label"),
                               .machine = QStringLiteral("ignored"),
                               .distro = QStringLiteral("debian"),
                               .disposable = true,
                               .folder = std::nullopt,
                               .timeoutEnabled = false};
};
