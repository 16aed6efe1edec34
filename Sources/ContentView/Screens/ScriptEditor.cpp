#include "ContentView/Screens/ScriptEditor.h"

#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "RunController/RunController.h"

#include <QMimeData>
#include <QTextDocumentFragment>

using namespace Qt::StringLiterals;

ScriptEditor::ScriptEditor(RunController &run, QWidget *parent) : QPlainTextEdit(parent), m_run(run)
{
    setAccessibleName(u"Script"_s);
    setFont(Typography::monospaced(13));
    setMinimumHeight(120);
    setMaximumHeight(200);
    setTabChangesFocus(true);
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(u' '));
    // Not at word boundaries: that takes quadratic time in the length of a line.
    setWordWrapMode(QTextOption::WrapAnywhere);
    new RoundedFrame(RoundedFrame::Ground::field, this);
    setViewportMargins(2, 1, 2, 1);

    takeScript();
    connect(this, &QPlainTextEdit::textChanged, this, &ScriptEditor::giveScript);
    connect(&run, &RunController::scriptChanged, this, &ScriptEditor::takeScript);
}

void ScriptEditor::replaceText(const QString &text)
{
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    all.insertText(text);
    moveCursor(QTextCursor::Start);
}

QSize ScriptEditor::sizeHint() const
{
    return {QPlainTextEdit::sizeHint().width(), minimumHeight()};
}

bool ScriptEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasText() || source->hasHtml();
}

void ScriptEditor::insertFromMimeData(const QMimeData *source)
{
    if (source->hasText()) {
        QPlainTextEdit::insertFromMimeData(source);
    } else if (source->hasHtml()) {
        QMimeData plain;
        plain.setText(QTextDocumentFragment::fromHtml(source->html()).toPlainText());
        QPlainTextEdit::insertFromMimeData(&plain);
    }
}

void ScriptEditor::takeScript()
{
    if (m_run.script() == m_known)
        return;
    m_known = m_run.script();
    const QSignalBlocker noEcho(this);
    setPlainText(m_known);
}

void ScriptEditor::giveScript()
{
    // Raw text, because a no-break space of the user's must stay one.
    m_known = document()->toRawText();
    m_known.replace(QChar::ParagraphSeparator, u'\n');
    m_known.replace(QChar::LineSeparator, u'\n');
    m_run.setScript(m_known);
}
