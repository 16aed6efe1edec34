#pragma once

// The editor of the script: two views of one text, the controller's `script` being the truth. Plain text only. Tab
// types a tab; Control-Tab and Shift-Tab move the focus on and back, so that nobody who works by keyboard is caught in
// it. A line may be of any length.

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
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    void insert(const QString &text);
    void leaveChain();
    void stepOverJoint(const QKeyEvent &event);
    void takeScript();
    void giveScript();

    RunController &m_run;
    /// The script as it was last taken or given: what differs from it was changed elsewhere.
    QString m_known;
    /// There has been a line that is a chain of paragraphs (see LongLines); there may be one still.
    bool m_hasChains = false;
};
