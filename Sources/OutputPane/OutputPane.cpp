#include "OutputPane/OutputPane.h"

#include "Look/Colours.h"
#include "Look/RoundedFrame.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPanePainter.h"
#include "RunController/RunController.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

constexpr int fontSize = 12;
constexpr int lowest = 160;
constexpr qint64 millisecondsPerFrame = 16;
/// Also where painting took longer once, because fonts were opened.
constexpr qint64 mostMillisecondsPerFrame = 500;
/// For the fonts of scripts that are shown for the first time.
constexpr std::chrono::milliseconds mostOpeningPerFrame(4);

} // namespace

OutputPane::OutputPane(RunController &controller, const TextView &text, QWidget *parent, Following following)
    : QAbstractScrollArea(parent),
      m_transcript(controller.transcript()),
      m_text(text),
      m_following(following),
      m_font(Typography::monospaced(fontSize)),
      m_rows(m_text),
      m_view(m_rows),
      m_navigation(m_rows, m_font),
      m_cursor(m_rows, m_navigation),
      m_mouse(m_view, m_navigation, m_cursor),
      m_marks(text),
      m_announcer(*this)
{
    OutputPaneAccessible::install();
    setAccessibleName(u"Output"_s);
    setFocusPolicy(Qt::StrongFocus);
    new RoundedFrame(RoundedFrame::Ground::pane, this);
    setMinimumHeight(lowest);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setCursor(Qt::IBeamCursor);

    m_frame.setSingleShot(true);
    m_frame.setTimerType(Qt::PreciseTimer);
    connect(&m_frame, &QTimer::timeout, this, &OutputPane::showChanges);
    m_completion.setSingleShot(true);
    connect(&m_completion, &QTimer::timeout, viewport(), [this] {
        if (!m_frame.isActive())
            viewport()->update();
    });
    connect(&controller, &RunController::revisionChanged, this, [this] {
        m_wantsEnd = m_wantsEnd || m_following == Following::always;
        requestFrame();
    });
    connect(&controller, &RunController::transcriptCleared, this, [this] {
        m_wantsEnd = true;
        m_cursor.standAtEnd();
        requestFrame();
    });
    connect(&controller, &RunController::outputLossChanged, this, &OutputPane::requestFrame);
    connect(&m_mouse, &OutputPaneMouse::selected, this, &OutputPane::selectionMoved);
    connect(&m_mouse, &OutputPaneMouse::ended, this, &OutputPane::takeSelection);
    connect(&m_mouse, &OutputPaneMouse::scrolled, this, &OutputPane::updateScrollBar);
    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this, &OutputPane::scrollByStep);
    connect(verticalScrollBar(), &QScrollBar::sliderReleased, this, &OutputPane::requestFrame);
}

bool OutputPane::isBlank() const
{
    return m_transcript.isEmpty();
}

QSize OutputPane::sizeHint() const
{
    return {400, lowest};
}

/// However many changes come, they are shown once a frame, the first of them at once. Rare characters take long to find
/// their rows and to be painted: then frames are longer, so that three quarters of the time are left for what arrives.
void OutputPane::requestFrame()
{
    if (m_frame.isActive())
        return;
    const qint64 busy = m_changeMilliseconds + m_paintMilliseconds;
    const qint64 frame = std::clamp(4 * busy, millisecondsPerFrame, mostMillisecondsPerFrame);
    const qint64 elapsed = m_sinceFrame.isValid() ? m_sinceFrame.elapsed() : frame;
    m_frame.start(static_cast<int>(std::clamp<qint64>(frame - elapsed, 0, frame)));
}

void OutputPane::showChanges()
{
    m_sinceFrame.start();
    const bool held = m_mouse.isHeld() || isSliderHeld();
    // Nothing is left of what was read: that is a new text, followed anew.
    if (m_following == Following::whileAtEnd && m_text.begin() >= m_shownEnd) {
        m_wantsEnd = true;
        m_cursor.standAtEnd();
    }
    m_shownEnd = m_text.end();
    if (m_wantsEnd && !held) {
        m_wantsEnd = false;
        m_view.scrollToEnd();
    }
    m_cursor.keepWithinText();
    if (!held)
        m_cursor.followEnd();
    m_announcer.announceText();
    if (isVisible())
        updateView();
    m_changeMilliseconds = m_sinceFrame.elapsed();
}

void OutputPane::updateView()
{
    updateScrollBar();
    viewport()->update();
}

bool OutputPane::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        viewport()->update();
        break;
    case QEvent::ShortcutOverride: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll) || OutputPaneCursor::isMove(*key))
            event->accept();
        break;
    }
    default:
        break;
    }
    return QAbstractScrollArea::event(event);
}

void OutputPane::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    const double width = viewport()->width() - 2 * OutputPaneViewport::padding;
    m_rows.setColumns(static_cast<int>(std::floor(width / m_font.cellWidth())));
    m_view.setHeights(viewport()->height(), m_font.rowHeight());
    m_cursor.forgetColumn();
    if (isVisible())
        updateView();
}

void OutputPane::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    showChanges();
}

void OutputPane::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ActivationChange)
        viewport()->update();
}

void OutputPane::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    if (!isBlank()) {
        QElapsedTimer timer;
        timer.start();
        const CellFont::OpeningLimit limit(m_font, mostOpeningPerFrame);
        paintRows(painter, event->rect());
        m_paintMilliseconds = timer.elapsed();
        // What was left out comes with what arrives, or else soon.
        if (m_font.takeMissed())
            m_completion.start(static_cast<int>(std::max(m_paintMilliseconds, millisecondsPerFrame)));
        return;
    }
    painter.setFont(m_font.font());
    painter.setPen(Colours::secondary(palette()));
    painter.drawText(QPointF(OutputPaneViewport::padding, OutputPaneViewport::padding + m_font.ascent()),
                     u"Output appears here."_s);
}

void OutputPane::paintRows(QPainter &painter, const QRect &area)
{
    OutputPanePainter rowPainter(painter, m_font, palette());
    std::vector<OutputPanePainter::Style> styles;
    const OutputRange shown = visibleRange();
    const std::vector<TextMatch> matches = m_marks.between(shown.begin, shown.end);
    auto match = matches.cbegin();
    for (const OutputPaneViewport::VisibleRow &visible : m_view.visibleRows()) {
        if (visible.y > area.bottom() || visible.y + m_font.rowHeight() <= area.top())
            continue;
        const Position begin = m_rows.begin(visible.row);
        const OutputPaneRow row = m_rows.layOut(visible.row, m_font);
        TextView::Run run = m_text.runAt(begin);
        styles.clear();
        for (const DisplayCluster &cluster : row.clusters()) {
            const Position position = begin + cluster.begin;
            if (position >= run.end)
                run = m_text.runAt(position);
            while (match != matches.cend() && match->end <= position)
                ++match;
            const bool isFound = match != matches.cend() && match->begin < begin + cluster.end();
            styles.push_back({run.kind, position >= m_cursor.begin() && position < m_cursor.end(), isFound});
        }
        rowPainter.draw(row, m_rows.bytes(visible.row), styles, QPointF(OutputPaneViewport::padding, visible.y));
    }
    paintCaret(painter);
}

void OutputPane::paintCaret(QPainter &painter)
{
    if (!hasFocus() || !m_cursor.isEmpty() || m_rows.isEmpty())
        return;
    const OutputPaneRows::Row row = m_navigation.rowOf(m_cursor.caret());
    for (const OutputPaneViewport::VisibleRow &visible : m_view.visibleRows()) {
        if (visible.row == row) {
            const double x = OutputPaneViewport::padding + m_navigation.xOf(m_cursor.caret());
            painter.fillRect(QRectF(x, visible.y, 1, m_font.rowHeight()), Colours::primary(palette()));
        }
    }
}

OutputPane::Position OutputPane::positionAt(QPoint point)
{
    if (m_rows.isEmpty())
        return m_text.begin();
    return m_navigation.positionIn(m_view.rowAt(point.y()), point.x() - OutputPaneViewport::padding);
}

QRect OutputPane::characterRect(Position position)
{
    if (m_rows.isEmpty())
        return {};
    const OutputPaneRows::Row row = m_rows.at(position);
    for (const OutputPaneViewport::VisibleRow &visible : m_view.visibleRows()) {
        if (!(visible.row == row))
            continue;
        const auto [left, right] = m_rows.layOut(row, m_font).extentOf(position - m_rows.begin(row));
        return QRectF(OutputPaneViewport::padding + left, visible.y, right - left, m_font.rowHeight()).toAlignedRect();
    }
    return {};
}
