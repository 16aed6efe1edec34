// HistoryProbe FOLDER FIRST COUNT: adds COUNT runs, numbered from FIRST, to the history in the support folder FOLDER,
// and ends as the application does. It prints why the last one could not be saved at once, or an empty line; then
// whether the call that was to fail (FailingCalls.cpp) was made.

#include "HistoryStore/HistoryStore.h"

#include <QCoreApplication>
#include <QTimeZone>

#include <cstdio>
#include <dlfcn.h>

int main(int argumentCount, char *arguments[])
{
    const QCoreApplication application(argumentCount, arguments);
    const QStringList given = QCoreApplication::arguments();
    QString error;
    {
        HistoryStore store(given.at(1));
        const int first = given.at(2).toInt();
        for (int number = first; number < first + given.at(3).toInt(); ++number) {
            HistoryEntry entry;
            entry.id = QUuid(static_cast<uint>(number), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
            // Long enough that a save is more than a moment, and that its end is not written with its beginning.
            entry.command = QStringLiteral("command %1 ").arg(number).repeated(500);
            entry.machine = QStringLiteral("dev");
            entry.exitCode = 0;
            entry.date = QDateTime(QDate(2026, 3, 1), QTime(14, 5, 9), QTimeZone::utc()).addSecs(number);
            store.add(entry);
        }
        error = store.saveError().value_or(QString());
    }
    const auto wasMade = reinterpret_cast<bool (*)()>(::dlsym(RTLD_DEFAULT, "failingCallWasMade"));
    std::printf("%s\n%d\n", error.toUtf8().constData(), wasMade != nullptr && wasMade() ? 1 : 0);
    return 0;
}
