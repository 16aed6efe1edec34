#include "ContentView/MachinePicker.h"

#include "ContentView/VisibleText.h"

#include <QSignalBlocker>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace
{

/// A name longer than this is shown by its beginning; real ones have 31 characters at most.
constexpr qsizetype longestShownName = 100;

QString shown(const QString &name)
{
    if (name.size() > longestShownName)
        return VisibleText::oneLine(name.first(longestShownName)) + u'…';
    return VisibleText::oneLine(name);
}

} // namespace

MachinePicker::MachinePicker(QWidget *parent) : QComboBox(parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(16);
    connect(this, &QComboBox::currentIndexChanged, this,
            [this](int index) { Q_EMIT chosen(itemData(index).toString()); });
}

void MachinePicker::showMachines(const QList<Machine> &machines, const QString &selected)
{
    QStringList names;
    names.reserve(std::max<qsizetype>(1, machines.size()));
    for (const Machine &machine : machines)
        names.append(machine.name);
    // The entry "No machines" stands for the empty name.
    if (names.isEmpty())
        names.append(QString());
    const QSignalBlocker notByUser(this);
    showNames(names);
    const int index = static_cast<int>(names.indexOf(selected));
    if (index != currentIndex())
        setCurrentIndex(index);
}

QSize MachinePicker::minimumSizeHint() const
{
    return {80, QComboBox::minimumSizeHint().height()};
}

void MachinePicker::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void MachinePicker::showNames(const QStringList &names)
{
    // What the old and the new list have in common at both ends stays as it is.
    int start = 0;
    while (start < count() && start < names.size() && itemData(start).toString() == names[start])
        ++start;
    int end = 0;
    while (end < count() - start && end < names.size() - start &&
           itemData(count() - 1 - end).toString() == names[names.size() - 1 - end])
        ++end;
    const int surplus = count() - start - end;
    if (surplus > 0)
        model()->removeRows(start, surplus);
    for (int index = start; index < names.size() - end; ++index)
        insertItem(index, names[index].isEmpty() ? u"No machines"_s : shown(names[index]), names[index]);
}
