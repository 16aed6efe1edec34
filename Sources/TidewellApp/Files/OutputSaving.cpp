#include "TidewellApp/Files/OutputSaving.h"

#include "Look/Alert.h"
#include "RunController/RunController.h"
#include "TidewellApp/Files/FileDialogs.h"
#include "TidewellApp/Files/SavingSheet.h"

#include <QApplication>

#include <algorithm>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

/// How often the progress is looked at.
constexpr std::chrono::milliseconds step(50);

void tellNotSaved(QWidget &over, const QString &path, const QString &reason)
{
    Alert::tell(&over, FileDialogs::quotedName(path) + u" was not saved."_s, reason);
}

} // namespace

OutputSaving::OutputSaving(RunController &run, QWidget &window, Write write, std::chrono::milliseconds untilShown)
    : m_run(run),
      m_window(window),
      m_write(std::move(write)),
      m_action(u"Save &Output As…"_s)
{
    m_action.setShortcut(QKeySequence::Save);
    connect(&m_action, &QAction::triggered, this, &OutputSaving::ask);
    connect(&run, &RunController::revisionChanged, this, &OutputSaving::followRecord);
    connect(&run, &RunController::transcriptCleared, this, &OutputSaving::followRecord);
    followRecord();
    m_untilShown.setSingleShot(true);
    m_untilShown.setInterval(untilShown);
    connect(&m_untilShown, &QTimer::timeout, this, &OutputSaving::showProgress);
    m_untilMoved.setInterval(step);
    connect(&m_untilMoved, &QTimer::timeout, this, &OutputSaving::moveProgress);
}

OutputSaving::~OutputSaving()
{
    cancel();
    if (isSaving())
        m_thread.join();
    delete m_sheet;
}

void OutputSaving::followRecord()
{
    m_action.setEnabled(!isSaving() && !m_run.transcript().record().isEmpty());
}

void OutputSaving::ask()
{
    QWidget *front = QApplication::activeWindow();
    QWidget *asking = front != nullptr && front->actions().contains(&m_action) ? front : &m_window;
    QFileDialog *dialog = FileDialogs::make(*asking, u"Save Output"_s, QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"txt"_s);
    dialog->selectFile(u"output.txt"_s);
    connect(dialog, &QFileDialog::fileSelected, this, [this, asking](const QString &path) { save(path, *asking); });
    dialog->open();
}

void OutputSaving::save(const QString &path, QWidget &asking)
{
    // Two windows can ask at the same time.
    if (isSaving()) {
        tellNotSaved(asking, path, u"The output is still being saved to "_s + FileDialogs::quotedName(m_path) + u'.');
        return;
    }
    m_path = path;
    m_over = &asking;
    m_progress.done = 0;
    m_progress.isCancelled = false;
    TextSnapshot text = m_run.transcript().record().snapshot();
    m_size = text.end() - text.begin();
    try {
        m_thread = std::thread([this, path, text = std::move(text)] {
            const std::optional<QString> failure = m_write(path, text, m_progress);
            QMetaObject::invokeMethod(this, [this, failure] { finish(failure); }, Qt::QueuedConnection);
        });
    } catch (const std::system_error &error) {
        finish(qt_error_string(error.code().value()));
        return;
    }
    m_untilShown.start();
    followRecord();
}

void OutputSaving::showProgress()
{
    m_untilShown.stop();
    if (!isSaving() || m_sheet)
        return;
    m_sheet = new SavingSheet(FileDialogs::quotedName(m_path), over());
    connect(m_sheet, &SavingSheet::cancelled, this, &OutputSaving::cancel);
    moveProgress();
    m_untilMoved.start();
    m_sheet->open();
}

void OutputSaving::moveProgress()
{
    if (m_sheet)
        m_sheet->setProgress(static_cast<double>(m_progress.done) / static_cast<double>(std::max<qint64>(1, m_size)));
}

void OutputSaving::finish(const std::optional<QString> &failure)
{
    if (isSaving())
        m_thread.join();
    m_untilShown.stop();
    m_untilMoved.stop();
    delete m_sheet;
    followRecord();
    if (failure)
        tellNotSaved(*over(), m_path, *failure);
    Q_EMIT ended(!failure && !m_progress.isCancelled);
}
