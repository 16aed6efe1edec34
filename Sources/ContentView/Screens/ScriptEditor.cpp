#include "ContentView/Screens/ScriptEditor.h"

#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "RunController/RunController.h"

#include <QMimeData>
#include <QPlainTextDocumentLayout>
#include <QTextDocumentFragment>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

/// A document of the script, laid out as the editor's own: what is set before the text costs nothing.
QTextDocument *documentOf(const QString &script, QPlainTextEdit &editor)
{
    auto *document = new QTextDocument(&editor);
    document->setDocumentLayout(new QPlainTextDocumentLayout(document));
    document->setDefaultFont(editor.document()->defaultFont());
    document->setDefaultTextOption(editor.document()->defaultTextOption());
    document->setPlainText(script);
    return document;
}

/// What tells of the caret in Qt's editor; null where Qt has it otherwise.
QObject *textControlOf(const QPlainTextEdit &editor)
{
    const QObjectList &parts = editor.children();
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [](const QObject *part) { return part->inherits("QWidgetTextControl"); });
    return found == parts.end() ? nullptr : *found;
}

} // namespace

ScriptEditor::ScriptEditor(RunController &run, QWidget *parent)
    : QPlainTextEdit(parent),
      m_run(run),
      m_known(run.script())
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
    {
        // Filled without a word: a screen reader that hears of the caret before the focus takes the editor for one that
        // it has spoken already, and stays silent.
        const QSignalBlocker noCaret(textControlOf(*this));
        setDocument(documentOf(m_known, *this));
    }

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
