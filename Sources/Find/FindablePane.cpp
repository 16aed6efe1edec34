#include "Find/FindablePane.h"

#include "Find/FindBar.h"
#include "RunController/RunController.h"

#include <QApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>

namespace
{

constexpr int barDistance = 6;
/// While a run prints, the matches are counted so often.
constexpr auto betweenCounts = std::chrono::milliseconds(100);

} // namespace

FindablePane::FindablePane(OutputPane *pane, RunController &controller, QWidget *parent)
    : QWidget(parent),
      m_pane(*pane),
      m_search(this),
      m_textChanges(betweenCounts, [this] {
          if (m_bar->isVisible())
              m_search.update(m_pane.text().snapshot());
      })
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(barDistance);
    layout->addWidget(pane, 1);
    m_bar = new FindBar(this);
    m_bar->hide();
    layout->addWidget(m_bar);
    setTabOrder(pane, m_bar);

    connect(m_bar, &FindBar::patternChanged, this, [this] { search(From::view); });
    connect(m_bar, &FindBar::nextWanted, this, &FindablePane::findNext);
    connect(m_bar, &FindBar::previousWanted, this, &FindablePane::findPrevious);
    connect(m_bar, &FindBar::closeWanted, this, &FindablePane::close);
    connect(&m_search, &SearchThread::found, this, [this](std::optional<TextMatch> match) {
        // What was found may have been dropped since.
        if (match && match->begin >= m_pane.text().begin())
            m_pane.reveal(*match);
    });
    connect(&m_search, &SearchThread::counted, this,
            [this](SearchThread::Count count) { m_bar->showCount(count.number, count.all); });
    connect(&controller, &RunController::revisionChanged, this, [this] { m_textChanges.request(); });
    connect(&controller, &RunController::transcriptCleared, this, [this] { m_textChanges.request(); });
    connect(&controller, &RunController::outputLossChanged, this, [this] { m_textChanges.request(); });
}

FindablePane *FindablePane::inFrontWindow()
{
    const QWidget *const window = QApplication::activeWindow();
    // One that is hidden may be about to go, and its children before it: the focus leaves them then, which is asked
    // about.
    if (window == nullptr || !window->isVisible())
        return nullptr;
    for (FindablePane *pane : window->findChildren<FindablePane *>()) {
        if (pane->isVisible())
            return pane;
    }
    return nullptr;
}

void FindablePane::find()
{
    QWidget *const focused = window()->focusWidget();
    if (focused != nullptr && !m_bar->isAncestorOf(focused))
        m_focusBefore = focused;
    open();
    m_bar->setFocus(Qt::ShortcutFocusReason);
    m_bar->selectText();
}

void FindablePane::findNext()
{
    step(SearchThread::Direction::forward);
}

void FindablePane::findPrevious()
{
    step(SearchThread::Direction::backward);
}

void FindablePane::useSelectionForFind()
{
    if (m_pane.selection().isEmpty())
        return;
    // No character takes more than three bytes for each of its units.
    const OutputPaneCursor &selection = m_pane.selection();
    const OutputPane::Position end =
        std::min(selection.end(), selection.begin() + 3 * OutputPane::Position{FindBar::longestText});
    m_bar->setText(m_pane.text().text(selection.begin(), end));
    m_bar->show();
    search(From::view);
}

void FindablePane::open()
{
    if (m_bar->isVisible())
        return;
    m_bar->show();
    search(From::nowhere);
}

void FindablePane::close()
{
    if (m_bar->isAncestorOf(window()->focusWidget()))
        (m_focusBefore && m_focusBefore->isVisible() ? m_focusBefore.data() : &m_pane)->setFocus();
    m_bar->hide();
    m_pane.mark({});
    m_search.stop();
}

void FindablePane::search(From from)
{
    const TextPattern pattern = m_bar->pattern();
    m_pane.mark(pattern);
    m_bar->showSearching();
    if (pattern.isEmpty()) {
        m_search.stop();
        return;
    }
    std::optional<OutputPane::Position> position;
    if (from == From::view)
        position = placeInView();
    m_search.search(pattern, m_pane.text().snapshot(), position);
}

/// Where the reader is: what is selected, if that is in view.
OutputPane::Position FindablePane::placeInView()
{
    const OutputRange shown = m_pane.visibleRange();
    const OutputPaneCursor &selection = m_pane.selection();
    const bool isInView = selection.begin() >= shown.begin && selection.begin() < shown.end;
    return isInView && !selection.isEmpty() ? selection.begin() : shown.begin;
}

void FindablePane::step(SearchThread::Direction direction)
{
    if (m_bar->text().isEmpty()) {
        find();
        return;
    }
    open();
    m_bar->showSearching();
    const bool isForward = direction == SearchThread::Direction::forward;
    const OutputPaneCursor &selection = m_pane.selection();
    const OutputRange shown = m_pane.visibleRange();
    const OutputRange from =
        selection.isEmpty() ? shown : OutputRange{.begin = selection.end(), .end = selection.begin()};
    m_search.step(m_pane.text().snapshot(), direction, isForward ? from.begin : from.end);
}

void FindablePane::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_bar->isVisible())
        close();
    else
        QWidget::keyPressEvent(event);
}
