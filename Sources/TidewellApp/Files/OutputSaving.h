#pragma once

// File > Save Output As…: all output of the current or last run, or what there is at that moment while a run goes, into
// a file. It is written on a thread of its own, one file at a time, and the window lives on; what takes longer than
// half a second shows its progress and can be cancelled.
//
//   idle ──a file was chosen──▶ saving ──written───▶ idle
//                                 ├──failed─────▶ a sentence over the window, the old file as it was ──▶ idle
//                                 └──cancelled──▶ the old file as it was ──▶ idle

#include "TidewellApp/Files/OutputFile.h"

#include <QAction>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <functional>
#include <thread>

class RunController;
class SavingSheet;

class OutputSaving : public QObject
{
    Q_OBJECT

public:
    using Write = std::function<decltype(OutputFile::write)>;

    /// Asks over `window`, unless another window that has the action is in front. Both must outlive it. After
    /// `untilShown` the progress is shown.
    OutputSaving(RunController &run, QWidget &window, Write write = OutputFile::write,
                 std::chrono::milliseconds untilShown = std::chrono::milliseconds(500));
    /// Cancels what is being saved.
    ~OutputSaving() override;

    /// For menus and windows; enabled when there is output to save and none is being saved.
    QAction *action() { return &m_action; }

    bool isSaving() const { return m_thread.joinable(); }
    /// At once, where it would only come after half a second.
    void showProgress();
    /// Ends what is being saved, soon.
    void cancel() { m_progress.isCancelled = true; }

Q_SIGNALS:
    /// The saving has ended; not when it did so with this object.
    void ended(bool isSaved);

private:
    void ask();
    void save(const QString &path, QWidget &asking);
    void finish(const std::optional<QString> &failure);
    void moveProgress();
    void followRecord();
    /// What the progress and a failure are shown over.
    QWidget *over() const { return m_over ? m_over.data() : &m_window; }

    RunController &m_run;
    QWidget &m_window;
    const Write m_write;
    QAction m_action;
    OutputFile::Progress m_progress;
    TextSnapshot::Position m_size = 0;
    QString m_path;
    /// Where the file was asked for; it may have been closed since.
    QPointer<QWidget> m_over;
    QPointer<SavingSheet> m_sheet;
    QTimer m_untilShown;
    QTimer m_untilMoved;
    std::thread m_thread;
};
