#include "OutputPane/OutputPaneAccessible.h"

#include "OutputPane/OutputPane.h"
#include "OutputPane/OutputPanePainter.h"
#include "Transcript/TextView.h"

#include <QAccessibleWidget>

#include <algorithm>
#include <chrono>
#include <limits>

using namespace Qt::StringLiterals;

namespace
{

using Position = TextView::Position;

/// Of a flood of output, this much is read out at a time.
constexpr Position mostAnnounced = Position{16} * 1024;
constexpr auto announcementPause = std::chrono::milliseconds(500);

#ifdef Q_OS_MACOS
/// The system asks for the whole text again and again, however long it is.
constexpr Position mostRead = Position{64} * 1024;
#else
/// The accessibility bus carries no message of 128 MiB.
constexpr Position mostRead = Position{127} * 1024 * 1024;
#endif

/// Offsets are int here. Beyond what that counts, the greatest one stands for all the rest and for the end.
constexpr int lastOffset = std::numeric_limits<int>::max();

int asOffset(qint64 units)
{
    return static_cast<int>(std::min<qint64>(units, lastOffset));
}

class OutputPaneInterface : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit OutputPaneInterface(OutputPane *pane) : QAccessibleWidget(pane, QAccessible::EditableText) {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Description && pane().isBlank())
            return u"Output appears here."_s;
        return QAccessibleWidget::text(kind);
    }

    int selectionCount() const override { return pane().selection().isEmpty() ? 0 : 1; }

    void selection(int index, int *start, int *end) const override
    {
        const bool exists = index == 0 && selectionCount() == 1;
        *start = exists ? offset(pane().selection().begin()) : 0;
        *end = exists ? offset(pane().selection().end()) : 0;
    }

    void addSelection(int start, int end) override { pane().select(position(start), position(end)); }

    void removeSelection(int index) override
    {
        const Position caret = pane().selection().caret().position;
        if (index == 0)
            pane().select(caret, caret);
    }

    void setSelection(int index, int start, int end) override
    {
        if (index == 0)
            addSelection(start, end);
    }

    int cursorPosition() const override { return offset(pane().selection().caret().position); }

    void setCursorPosition(int offset) override
    {
        const Position place = position(offset);
        pane().select(place, place);
        pane().scrollTo(place);
    }

    QString text(int start, int end) const override { return read({position(start), position(end)}); }

    int characterCount() const override { return offset(store().end()); }

    QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override
    {
        return unitText(unitAt(position(offset), boundary), start, end);
    }

    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override
    {
        const OutputRange unit = unitAt(position(offset), boundary);
        if (unit.begin == store().begin())
            return unitText({unit.begin, unit.begin}, start, end);
        return unitText(unitAt(pane().navigation().previousCharacter(unit.begin), boundary), start, end);
    }

    QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override
    {
        const OutputRange unit = unitAt(position(offset), boundary);
        if (unit.end == store().end())
            return unitText({unit.end, unit.end}, start, end);
        return unitText(unitAt(unit.end, boundary), start, end);
    }

    QRect characterRect(int offset) const override
    {
        const QRect rect = pane().characterRect(position(offset));
        return rect.isNull() ? rect : QRect(pane().viewport()->mapToGlobal(rect.topLeft()), rect.size());
    }

    int offsetAtPoint(const QPoint &point) const override
    {
        const QPoint place = pane().viewport()->mapFromGlobal(point);
        return pane().viewport()->rect().contains(place) ? offset(pane().positionAt(place)) : -1;
    }

    void scrollToSubstring(int start, int /*end*/) override { pane().scrollTo(position(start)); }

    QString attributes(int offset, int *start, int *end) const override
    {
        if (store().isEmpty()) {
            *start = *end = 0;
            return {};
        }
        const TextView::Run run = store().runAt(position(offset));
        *start = this->offset(run.begin);
        *end = this->offset(run.end);
        const QColor colour = OutputPanePainter::colourOf(run.kind, pane().palette());
        return u"color:rgb(%1,%2,%3);"_s.arg(colour.red()).arg(colour.green()).arg(colour.blue());
    }

private:
    OutputPane &pane() const { return *static_cast<OutputPane *>(widget()); }
    const TextView &store() const { return pane().text(); }
    int offset(Position position) const { return asOffset(store().utf16Offset(position)); }
    /// -1 means the end, as assistive technology uses it.
    Position position(int offset) const
    {
        return offset < 0 || offset == lastOffset ? store().end() : store().positionAtUtf16(offset);
    }

    QString read(OutputRange range) const
    {
        // What is in view is looked up only where it matters: the whole is asked for row by row on macOS.
        if (range.end - range.begin > mostRead)
            range = OutputPaneAccessible::readable(range, pane().positionAt(QPoint(0, 0)), mostRead);
        return OutputPaneAccessible::spoken(store().text(range.begin, range.end));
    }

    OutputRange unitAt(Position position, QAccessible::TextBoundaryType boundary) const
    {
        const OutputPaneNavigation &navigation = pane().navigation();
        if (store().isEmpty())
            return {store().begin(), store().begin()};
        switch (boundary) {
        case QAccessible::CharBoundary:
            return {position, navigation.nextCharacter(position)};
        case QAccessible::WordBoundary: {
            const OutputRange word = navigation.wordAt(position);
            return word.begin == word.end ? OutputRange{position, navigation.nextCharacter(position)} : word;
        }
        case QAccessible::LineBoundary:
            return navigation.rowAt(position);
        case QAccessible::SentenceBoundary:
        case QAccessible::ParagraphBoundary:
            return navigation.lineAt(position);
        case QAccessible::NoBoundary:
            break;
        }
        return {store().begin(), store().end()};
    }

    QString unitText(OutputRange unit, int *start, int *end) const
    {
        *start = offset(unit.begin);
        *end = offset(unit.end);
        return read(unit);
    }
};

QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    auto *pane = qobject_cast<OutputPane *>(object);
    return pane != nullptr && className == u"OutputPane"_s ? new OutputPaneInterface(pane) : nullptr;
}

} // namespace

void OutputPaneAccessible::install()
{
    QAccessible::installFactory(interfaceFor); // which keeps one of each
}

OutputRange OutputPaneAccessible::readable(OutputRange range, Position view, Position most)
{
    if (range.end - range.begin <= most)
        return range;
    const Position begin = std::clamp(view - most / 2, range.begin, range.end - most);
    return {begin, begin + most};
}

QString OutputPaneAccessible::spoken(QString text)
{
    return text.replace(QChar::Null, QChar::ReplacementCharacter);
}

OutputPaneAccessible::Announcer::Announcer(OutputPane &pane)
    : m_pane(pane),
      m_begin(pane.text().begin()),
      m_end(pane.text().end()),
      m_throttle(announcementPause, [this] { announceNow(); })
{
}

void OutputPaneAccessible::Announcer::announceNow()
{
    const TextView &text = m_pane.text();
    if (QAccessible::isActive() && text.begin() > m_begin) {
        // What was dropped is gone, so its text cannot be told.
        QAccessibleTextRemoveEvent removed(&m_pane, 0, QString());
        QAccessible::updateAccessibility(&removed);
    }
    if (QAccessible::isActive() && text.end() > m_end) {
        Position from = std::max({text.begin(), m_end, text.end() - mostAnnounced});
        from = text.positionAtUtf16(text.utf16Offset(from));
        QAccessibleTextInsertEvent inserted(&m_pane, asOffset(text.utf16Offset(from)),
                                            spoken(text.text(from, text.end())));
        QAccessible::updateAccessibility(&inserted);
    }
    m_begin = text.begin();
    m_end = text.end();
}

void OutputPaneAccessible::Announcer::announceSelection() const
{
    // A match that is found while the keyboard is in the find bar is told there, and not here as well.
    if (!QAccessible::isActive() || !m_pane.hasFocus())
        return;
    const TextView &text = m_pane.text();
    const auto offset = [&](Position position) { return asOffset(text.utf16Offset(position)); };
    const OutputPaneCursor &selection = m_pane.selection();
    QAccessibleTextSelectionEvent selected(&m_pane, offset(selection.begin()), offset(selection.end()));
    selected.setCursorPosition(offset(selection.caret().position));
    QAccessible::updateAccessibility(&selected);
    QAccessibleTextCursorEvent moved(&m_pane, offset(selection.caret().position));
    QAccessible::updateAccessibility(&moved);
}
