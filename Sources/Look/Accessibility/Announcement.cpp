#include "Look/Accessibility/Announcement.h"

#include "Text/VisibleText.h"

#include <QAccessibleObject>
#include <QPointer>
#include <QWidget>

#include <deque>

namespace
{

#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)

void speak(QWidget *origin, const QString &text)
{
    QAccessibleAnnouncementEvent event(origin, text);
    QAccessible::updateAccessibility(&event);
}

#else

/// Before 6.8 Qt has no event that carries words. What screen readers speak unasked there is a notification that
/// appears; they ask for its name somewhat later, so each text has a notification of its own, which stays for a while.
class Notification : public QAccessibleObject
{
public:
    Notification(QObject *object, QString text) : QAccessibleObject(object), m_text(std::move(text)) {}

    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(object()->parent()); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override { return kind == QAccessible::Name ? m_text : QString(); }
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override { return {}; }

private:
    const QString m_text;
};

constexpr std::size_t mostKept = 16;

void speak(QWidget *origin, const QString &text)
{
    static std::deque<QPointer<QObject>> kept;
    kept.emplace_back(new QObject(origin->window()));
    QAccessible::registerAccessibleInterface(new Notification(kept.back(), text));
    QAccessibleEvent event(kept.back(), QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
    if (kept.size() > mostKept) {
        delete kept.front();
        kept.pop_front();
    }
}

#endif

} // namespace

void Announcement::say(QWidget *origin, const QString &text)
{
    const QString spoken = VisibleText::accessibleName(text.trimmed());
    if (!QAccessible::isActive() || spoken.isEmpty())
        return;
    // After what the same event does to the focus, because the words about that would cut these short.
    QMetaObject::invokeMethod(origin, [origin, spoken] { speak(origin, spoken); }, Qt::QueuedConnection);
}
