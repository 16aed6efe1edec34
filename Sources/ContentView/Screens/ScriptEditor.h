#pragma once

// The editor of the script: two views of one text, the controller's `script` being the truth. Plain text only. Tab
// moves the focus on, so that nobody who works by keyboard is caught in it.

#include <QPlainTextEdit>

class RunController;

class ScriptEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    /// `run` must outlive it.
    explicit ScriptEditor(RunController &run, QWidget *parent = nullptr);

    /// Replaces the whole text in one step that can be undone.
    void replaceText(const QString &text);

    /// Its smallest height: whatever more it gets comes from the window's size.
    QSize sizeHint() const override;

protected:
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    void takeScript();
    void giveScript();

    RunController &m_run;
    /// The script as it was last taken or given: what differs from it was changed elsewhere.
    QString m_known;
};
