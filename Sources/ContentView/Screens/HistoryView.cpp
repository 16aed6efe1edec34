#include "ContentView/Screens/HistoryView.h"

#include "ContentView/Screens/DateText.h"
#include "ContentView/Screens/HistoryTexts.h"
#include "HistoryStore/HistoryStore.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/NoteText.h"
#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Look/Typography.h"
#include "Text/Duration.h"
#include "Text/VisibleText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

/// More than a row can show; the whole may be megabytes.
constexpr qsizetype longestText = 1000;

enum EntryAction { loadCommand, deleteEntry };

QString visible(const QString &text)
{
    return VisibleText::oneLine(VisibleText::elidedEnd(text, longestText));
}

RowContent contentOf(const HistoryEntry &entry, const QByteArray &locale)
{
    const QString firstLine = VisibleText::elidedEnd(HistoryTexts::firstLine(entry.command), longestText);
    const QStringList caption{visible(entry.machine), visible(HistoryTexts::statusText(entry)),
                              Duration::text(entry.duration),
                              DateText::mediumDateShortTime(entry.date.toLocalTime(), locale)};
    RowContent row;
    row.id = entry.id.toString();
    row.name = firstLine;
    row.lines = {{firstLine, RowContent::TextStyle::monospaced},
                 {caption.join(u" · "_s), RowContent::TextStyle::caption, RowContent::Origin::own}};
    row.buttons = {{loadCommand, u"Load"_s}, {deleteEntry, u"Delete"_s}};
    return row;
}

QString saveErrorText(const std::optional<QString> &reason)
{
    if (!reason)
        return {};
    return u"The history could not be saved (%1); it is kept here and saved as soon as that is possible."_s.arg(
        *reason);
}

} // namespace

HistoryView::HistoryView(const Controllers &controllers, QWidget *parent)
    : QWidget(parent),
      m_history(controllers.history)
{
    auto *layout = new QVBoxLayout(this);
    auto *header = new QHBoxLayout;
    header->addWidget(
        new PlainLabel(u"Last 50 runs"_s, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, this));
    header->addStretch();
    m_clear = Controls::button(u"Clear all"_s, u"Delete all entries of the history"_s, this);
    header->addWidget(m_clear);
    layout->addLayout(header);
    m_saveError = new NoteText(Typography::body(), Colours::red, this);
    layout->addWidget(m_saveError);
    m_hint = new PlainLabel(u"No runs yet."_s, Typography::body(), Colours::secondary, PlainLabel::Fit::wrap, this);
    layout->addWidget(m_hint);
    m_list = new RowList(u"History"_s, this);
    layout->addWidget(m_list, 1);
    layout->addStretch();

    connect(m_clear, &QPushButton::clicked, this, [this] { m_history.clear(); });
    connect(m_list, &RowList::pressed, this, &HistoryView::press);
    connect(m_list, &RowList::focusLeft, this, &HistoryView::focusLeft);
    for (const auto changed : {&HistoryStore::entriesChanged, &HistoryStore::saveErrorChanged})
        connect(&m_history, changed, this, &HistoryView::showFields);
    showFields();
}

void HistoryView::showFields()
{
    const QByteArray locale = DateText::userLocale();
    QList<RowContent> rows;
    rows.reserve(m_history.entries().size());
    for (const HistoryEntry &entry : m_history.entries())
        rows.append(contentOf(entry, locale));
    m_list->setRows(rows);
    m_list->setVisible(!rows.isEmpty());
    m_hint->setVisible(rows.isEmpty());
    if (rows.isEmpty() && window()->focusWidget() == m_clear)
        Q_EMIT focusLeft();
    m_clear->setEnabled(!rows.isEmpty());
    m_saveError->setText(saveErrorText(m_history.saveError()));
}

void HistoryView::press(int row, int action)
{
    const HistoryEntry entry = m_history.entries().at(row);
    switch (action) {
    case loadCommand:
        Q_EMIT loadRequested(entry.command);
        break;
    case deleteEntry:
        m_history.remove(entry);
        break;
    default:
        Q_UNREACHABLE();
    }
}
