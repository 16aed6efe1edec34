#include "Look/LogBox.h"

#include "Look/RoundedFrame.h"
#include "Look/Typography.h"

#include <chrono>

namespace
{

constexpr auto frame = std::chrono::milliseconds(16);
constexpr int margin = 3;

} // namespace

LogBox::LogBox(const QString &name, int height, std::function<QString()> text, QWidget *parent)
    : PlainTextBox(Typography::monospaced(11), WhenGrowing::followEnd, parent),
      m_text(std::move(text))
{
    setAccessibleName(name);
    setFixedHeight(height);
    new RoundedFrame(RoundedFrame::Ground::pane, this);
    document()->setDocumentMargin(margin);
    setViewportMargins(margin, 0, margin, 0);
    m_nextFrame.setSingleShot(true);
    m_nextFrame.setInterval(frame);
    connect(&m_nextFrame, &QTimer::timeout, this, &LogBox::showNow);
    showNow();
}

void LogBox::reload()
{
    if (shownText().isEmpty())
        showNow();
    else if (!m_nextFrame.isActive())
        m_nextFrame.start();
}

void LogBox::showNow()
{
    showText(m_text());
}
