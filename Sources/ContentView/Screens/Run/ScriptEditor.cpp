#include "ContentView/Screens/Run/ScriptEditor.h"

#include "ContentView/DroppedText.h"
#include "Look/PlainText/LongLines.h"
#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "RunController/RunController.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QPlainTextDocumentLayout>
#include <QTextBlock>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

/// Where Command is Qt's Control, the Control key is its Meta.
constexpr auto controlKeys = Qt::ControlModifier | Qt::MetaModifier;

/// An empty document, laid out as the editor's own: what is set before the text costs nothing.
QTextDocument *documentFor(QPlainTextEdit &editor)
{
    auto *document = new QTextDocument(&editor);
    document->setDocumentLayout(new QPlainTextDocumentLayout(document));
    document->setDefaultFont(editor.document()->defaultFont());
    document->setDefaultTextOption(editor.document()->defaultTextOption());
    return document;
}

/// Gives a document another text, with nothing to undo. True when a line of it had to become a chain.
bool fill(QTextDocument &document, const QString &text)
{
    document.setUndoRedoEnabled(false);
    document.clear();
    QTextCursor cursor(&document);
    const bool hasChains = LongLines::insert(cursor, text);
    document.setUndoRedoEnabled(true);
    return hasChains;
}

/// What tells of the caret in Qt's editor; null where Qt has it otherwise.
QObject *textControlOf(const QPlainTextEdit &editor)
{
    const QObjectList &parts = editor.children();
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [](const QObject *part) { return part->inherits("QWidgetTextControl"); });
    return found == parts.end() ? nullptr : *found;
}

bool deletesBackward(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Backspace || event.matches(QKeySequence::DeleteStartOfWord);
}

bool deletesForward(const QKeyEvent &event)
{
    return event.matches(QKeySequence::Delete) || event.matches(QKeySequence::DeleteEndOfWord) ||
           event.matches(QKeySequence::DeleteEndOfLine);
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
    setTabChangesFocus(true); // whatever is not a plain Tab
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(u' '));
    // Not at word boundaries: that takes quadratic time in the length of a line.
    setWordWrapMode(QTextOption::WrapAnywhere);
    new RoundedFrame(RoundedFrame::Ground::field, this);
    setViewportMargins(2, 1, 2, 1);
    {
        // Filled without a word: a screen reader that hears of the caret before the focus takes the editor for one that
        // it has spoken already, and stays silent.
        const QSignalBlocker noCaret(textControlOf(*this));
        QTextDocument *document = documentFor(*this);
        m_hasChains = fill(*document, m_known);
        setDocument(document);
    }

    connect(this, &QPlainTextEdit::textChanged, this, &ScriptEditor::giveScript);
    connect(&run, &RunController::scriptChanged, this, &ScriptEditor::takeScript);
}

void ScriptEditor::replaceText(const QString &text)
{
    if (text == m_run.script())
        return;
    selectAll();
    insert(text);
    moveCursor(QTextCursor::Start);
    // Exactly, also where a document has no such line end.
    m_known = text;
    m_run.setScript(text);
}

QSize ScriptEditor::sizeHint() const
{
    return {QPlainTextEdit::sizeHint().width(), minimumHeight()};
}

bool ScriptEditor::event(QEvent *event)
{
    // Here, because a widget asks for the next one before it sees a Tab.
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool isTab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (isTab && (key->modifiers() & controlKeys) != 0)
            return focusNextPrevChild(key->key() == Qt::Key_Tab && !key->modifiers().testFlag(Qt::ShiftModifier));
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
            insert(u"\t"_s);
            return true;
        }
    }
    return QPlainTextEdit::event(event);
}

void ScriptEditor::keyPressEvent(QKeyEvent *event)
{
    stepOverJoint(*event);
    leaveChain();
    QPlainTextEdit::keyPressEvent(event);
}

void ScriptEditor::inputMethodEvent(QInputMethodEvent *event)
{
    leaveChain();
    QPlainTextEdit::inputMethodEvent(event);
}

bool ScriptEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return DroppedText::isIn(*source);
}

void ScriptEditor::insertFromMimeData(const QMimeData *source)
{
    insert(DroppedText::of(*source));
}

QMimeData *ScriptEditor::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    auto *copied = new QMimeData;
    copied->setText(LongLines::text(*document(), cursor.selectionStart(), cursor.selectionEnd()));
    return copied;
}

void ScriptEditor::insert(const QString &text)
{
    leaveChain();
    QTextCursor cursor = textCursor();
    // One step, so that all of it is known before it is told of.
    cursor.beginEditBlock();
    const bool hasCut = LongLines::insert(cursor, text);
    m_hasChains = m_hasChains || hasCut;
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
}

/// Lets what is typed next be a text like any other. What it replaces may begin right behind a joint of a chain, whose
/// format it would take over, and a line end typed later would be taken for a joint.
void ScriptEditor::leaveChain()
{
    QTextCursor cursor = textCursor();
    const QTextBlock paragraph = document()->findBlock(cursor.selectionStart());
    if (!m_hasChains || cursor.selectionStart() != paragraph.position() || !LongLines::continuesLine(paragraph))
        return;
    if (cursor.hasSelection()) {
        const int end = cursor.selectionEnd();
        cursor.setPosition(paragraph.position() - 1);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        setTextCursor(cursor);
    } else if (paragraph.length() == 1) {
        setCurrentCharFormat({});
    }
}

/// A joint within a line is nothing that could be deleted: what is beyond it goes.
void ScriptEditor::stepOverJoint(const QKeyEvent &event)
{
    QTextCursor cursor = textCursor();
    if (!m_hasChains || cursor.hasSelection())
        return;
    if (deletesBackward(event)) {
        while (cursor.atBlockStart() && LongLines::continuesLine(cursor.block()))
            cursor.movePosition(QTextCursor::PreviousCharacter);
    } else if (deletesForward(event)) {
        while (cursor.atBlockEnd() && LongLines::continuesLine(cursor.block().next()))
            cursor.movePosition(QTextCursor::NextCharacter);
    }
    if (cursor.position() != textCursor().position())
        setTextCursor(cursor);
}

void ScriptEditor::takeScript()
{
    if (m_run.script() == m_known)
        return;
    m_known = m_run.script();
    const QSignalBlocker noEcho(this);
    m_hasChains = fill(*document(), m_known);
    moveCursor(QTextCursor::Start);
}

void ScriptEditor::giveScript()
{
    if (m_hasChains) {
        m_known = LongLines::text(*document(), 0, document()->characterCount() - 1);
    } else {
        // Raw text, because a no-break space of the user's must stay one.
        m_known = document()->toRawText();
        m_known.replace(QChar::ParagraphSeparator, u'\n');
        m_known.replace(QChar::LineSeparator, u'\n');
    }
    m_run.setScript(m_known);
}
