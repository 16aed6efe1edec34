#pragma once

// The command line that the programs about a child's output share: [--alternating | --line-by-line] FILE, and
// for those that repeat something the number of rounds.

#include <QCoreApplication>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

struct OutputArguments {
    qint64 bytes = 0;
    int rounds = 15;
    QString file;
    /// The shell script that prints the file and does nothing else.
    QString script;

    /// Ends the program when the command line is not in order.
    static OutputArguments read()
    {
        OutputArguments result;
        QStringList given = QCoreApplication::arguments().mid(1);
        const bool alternates = given.removeAll(QStringLiteral("--alternating")) > 0;
        const bool goesByLines = given.removeAll(QStringLiteral("--line-by-line")) > 0;
        if (given.size() == 2)
            result.rounds = given.takeLast().toInt();
        if (given.size() != 1 || result.rounds < 1 || !QFileInfo(given.first()).isReadable()) {
            std::fputs("[--alternating | --line-by-line] FILE [ROUNDS]\n", stderr);
            std::exit(2);
        }
        const QFileInfo file(given.first());
        result.bytes = file.size();
        result.file = file.absoluteFilePath();
        const QString writer = alternates || goesByLines ? QStringLiteral(ALTERNATING_WRITER) : QStringLiteral("cat");
        result.script = QStringLiteral("exec '%1' '%2'").arg(writer, file.absoluteFilePath());
        if (goesByLines)
            result.script += QStringLiteral(" one");
        return result;
    }
};
