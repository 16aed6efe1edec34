// What a refresh of a long list costs the main thread: the Containers screen over a tool that prints its list from a
// file, against the same store without a screen.
//
// UpdatingLists [CONTAINERS] [ROUNDS]

#include "ContainerStore/ContainerStore.h"
#include "ContentView/Screens/ContainersView.h"
#include "HistoryStore/HistoryStore.h"
#include "Look/Rows/RowList.h"
#include "MachineStore/MachineStore.h"
#include "RunController/RunController.h"
#include "Screens/PaintWatch.h"
#include "SetupController/SetupController.h"
#include "Support/TestTools.h"
#include "shared/Figures.h"
#include "shared/Measuring.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>

#include <ctime>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace
{

// What this thread has worked since its start; the tool's own work and the waiting for it are not in it.
double secondsWorked()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

class Engine
{
public:
    explicit Engine(int count) : m_count(count)
    {
        m_tools.addTool(u"docker"_s, u"cat '%1'"_s.arg(m_tools.path(u"list"_s)));
        print(-1);
    }

    /// Makes the tool print its containers; the one with this number is another than before.
    void print(int changed)
    {
        QFile file(m_tools.path(u"list"_s));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        for (int number = 0; number < m_count; ++number)
            file.write(
                u"{\"Command\":\"\\\"/docker-entrypoint.…\\\"\",\"CreatedAt\":\"2026-11-20 10:11:12 +0100 CET\","
                "\"ID\":\"%1\",\"Image\":\"nginx:latest\",\"Labels\":\"a=b,c=d\",\"Names\":\"web-%1\","
                "\"Ports\":\"0.0.0.0:%1->80/tcp\",\"Size\":\"0B\",\"State\":\"%2\",\"Status\":\"Up 2 minutes\"}\n"_s
                    .arg(number)
                    .arg(number == changed ? u"exited"_s : u"running"_s)
                    .toUtf8());
    }

private:
    const int m_count;
    TestTools m_tools;
};

double workOfRefresh(ContainerStore &store)
{
    const double before = secondsWorked();
    QEventLoop loop;
    store.refresh().then([&loop] { loop.quit(); });
    loop.exec();
    QApplication::processEvents(); // paints what is to be painted
    return secondsWorked() - before;
}

void report(const char *what, const std::vector<double> &seconds)
{
    printFigures(what, {{"median_ms", median(seconds) * 1000}, {"worst_ms", percentile(seconds, 1) * 1000}});
}

} // namespace

int main(int argumentCount, char *arguments[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QApplication::setCursorFlashTime(0);
    const int count = argumentCount > 1 ? std::atoi(arguments[1]) : 1000;
    const int rounds = argumentCount > 2 ? std::atoi(arguments[2]) : 15;

    Engine engine(count);
    SetupController setup;
    MachineStore machines;
    RunController run;
    HistoryStore history(std::nullopt);
    ContainerStore containers;
    ContainerStore unseen;
    const Controllers controllers{setup, machines, run, history, containers};
    workOfRefresh(containers);
    workOfRefresh(unseen);

    std::vector<double> filling;
    std::vector<double> reading;
    std::vector<double> unchanged;
    std::vector<double> oneChanged;
    int paintsUnchanged = 0;
    int paintsOutsideTheRow = 0;
    std::unique_ptr<ContainersView> view;
    for (int round = 0; round < rounds; ++round) {
        view.reset();
        filling.push_back(secondsFor([&] {
            view = std::make_unique<ContainersView>(controllers);
            view->resize(820, 640);
            view->show();
            QApplication::processEvents();
            view->repaint();
        }));
    }
    RowList &list = *view->findChild<RowList *>();
    for (int round = 0; round < rounds; ++round) {
        reading.push_back(workOfRefresh(unseen));
        const PaintWatch nothing(*view);
        unchanged.push_back(workOfRefresh(containers));
        paintsUnchanged += nothing.count();

        engine.print(round % 2 == 0 ? 3 : -1);
        const PaintWatch oneRow(*view);
        oneChanged.push_back(workOfRefresh(containers));
        paintsOutsideTheRow += oneRow.count() > 0 && oneRow.isWithin(*list.row(3)) ? 0 : 1;
    }

    printFigures("lists", {{"containers", count}, {"rounds", rounds}, {"row_widgets", list.widgetCount()}});
    report("first filling of the screen, painted (wall time)", filling);
    report("refresh, store alone: reading, parsing, comparing (work)", reading);
    report("refresh that changes nothing, with the screen (work)", unchanged);
    printFigures("of which the screen's",
                 {{"median_ms", (median(unchanged) - median(reading)) * 1000}, {"paints_in_all", paintsUnchanged}});
    report("refresh that changes one row, with the screen (work)", oneChanged);
    printFigures("rounds in which anything but that row was painted", {{"rounds", paintsOutsideTheRow}});

    // Assistive technology may ask for every row with all that it holds.
    const double asking = secondsFor([&] {
        const QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(list.widget());
        for (int row = 0; row < count; ++row) {
            const QAccessibleInterface *const asked = interface->child(row);
            for (int part = 0; part < asked->childCount(); ++part)
                asked->child(part)->text(QAccessible::Name);
        }
    });
    printFigures("telling assistive technology of every row (wall time)",
                 {{"once_ms", asking * 1000}, {"row_widgets", list.widgetCount()}});
    return 0;
}
