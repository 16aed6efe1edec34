// The smallest window to compare with: ten stock widgets. With --polling it also starts the same three children as the
// application does, one after the other every six seconds, and reads what they print.
//
// SmallestWindow [--polling]

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace
{

class Polling
{
public:
    Polling()
    {
        m_child.setStandardInputFile(QProcess::nullDevice());
        QObject::connect(&m_child, &QProcess::finished, &m_child, [this] {
            m_child.readAllStandardOutput();
            startNext();
        });
        m_sleep.setSingleShot(true);
        m_sleep.setTimerType(Qt::PreciseTimer);
        m_sleep.callOnTimeout([this] { startNext(); });
        startNext();
    }

private:
    void startNext()
    {
        const std::array<QStringList, 3> commands{
            QStringList{u"orb"_s, u"status"_s}, QStringList{u"orb"_s, u"list"_s, u"-f"_s, u"json"_s},
            QStringList{u"docker"_s, u"ps"_s, u"-a"_s, u"--format"_s, u"{{json .}}"_s}};
        if (m_next == commands.size()) {
            m_next = 0;
            m_sleep.start(6000);
            return;
        }
        const QStringList &command = commands[m_next++];
        m_child.start(u"/opt/homebrew/bin/"_s + command.first(), command.mid(1));
    }

    QProcess m_child;
    QTimer m_sleep;
    std::size_t m_next = 0;
};

} // namespace

int main(int argumentCount, char *arguments[])
{
    QApplication application(argumentCount, arguments);
    QWidget window;
    auto *const layout = new QVBoxLayout(&window);
    // The first has the keyboard and its caret blinks, as in the application.
    layout->addWidget(new QLineEdit);
    for (int number = 0; number < 4; ++number)
        layout->addWidget(new QLabel(u"Label"_s));
    for (int number = 0; number < 5; ++number)
        layout->addWidget(new QPushButton(u"Button"_s));
    window.resize(960, 760);
    window.show();
    std::optional<Polling> polling;
    if (QApplication::arguments().contains(u"--polling"_s))
        polling.emplace();
    return QApplication::exec();
}
