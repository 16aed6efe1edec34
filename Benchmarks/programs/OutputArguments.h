#pragma once

// The command line that the programs about a child's output share: [--json] [--alternating | --line-by-line] FILE,
// and for those that repeat something the number of rounds.

#include <QCoreApplication>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

struct OutputArguments {
    QString file;
    qint64 bytes = 0;
    bool asJson = false;
    int rounds = 15;
    /// The shell script that prints the file and does nothing else.
    QString script;

    /// Ends the program when the command line is not in order.
    static OutputArguments read()
    {
        OutputArguments result;
        QStringList given = QCoreApplication::arguments().mid(1);
        result.asJson = given.removeAll(QStringLiteral("--json")) > 0;
        const bool alternates = given.removeAll(QStringLiteral("--alternating")) > 0;
        const bool goesByLines = given.removeAll(QStringLiteral("--line-by-line")) > 0;
        if (given.size() == 2)
            result.rounds = given.takeLast().toInt();
        if (given.size() != 1 || result.rounds < 1 || !QFileInfo(given.first()).isReadable()) {
            std::fputs("[--json] [--alternating | --line-by-line] FILE [ROUNDS]\n", stderr);
            std::exit(2);
        }
        result.file = QFileInfo(given.first()).absoluteFilePath();
        result.bytes = QFileInfo(result.file).size();
        const QString writer = alternates || goesByLines ? QStringLiteral(ALTERNATING_WRITER) : QStringLiteral("cat");
        result.script = QStringLiteral("exec '%1' '%2'").arg(writer, result.file);
        if (goesByLines)
            result.script += QStringLiteral(" one");
        return result;
    }
};
