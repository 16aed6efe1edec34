#include "ContentView/Screens/Run/MachinePicker.h"

#include "Text/VisibleText.h"

#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace
{

/// A name longer than this is shown by its beginning; real ones have 31 characters at most.
constexpr qsizetype longestShownName = 100;

QString shown(const QString &name)
{
    return VisibleText::oneLine(VisibleText::elidedEnd(name, longestShownName));
}

} // namespace

MachinePicker::MachinePicker(QWidget *parent) : Picker(u"Machine"_s, Label::visible, parent)
{
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(16);
    connect(this, &QComboBox::currentIndexChanged, this,
            [this](int index) { Q_EMIT chosen(itemData(index).toString()); });
}

void MachinePicker::showMachines(const QList<Machine> &machines, const QString &selected)
{
    QVariantList names;
    for (const Machine &machine : machines)
        names.append(machine.name);
    if (names.isEmpty())
        names.append(QVariant());
    const QSignalBlocker notByUser(this);
    showEntries(names);
    const int index = machines.isEmpty() ? 0 : static_cast<int>(names.indexOf(selected));
    if (index != currentIndex())
        setCurrentIndex(index);
}

QSize MachinePicker::minimumSizeHint() const
{
    return {80, QComboBox::minimumSizeHint().height()};
}

void MachinePicker::showEntries(const QVariantList &names)
{
    // What the old and the new list have in common at both ends stays as it is.
    int start = 0;
    while (start < count() && start < names.size() && itemData(start) == names[start])
        ++start;
    int end = 0;
    while (end < count() - start && end < names.size() - start &&
           itemData(count() - 1 - end) == names[names.size() - 1 - end])
        ++end;
    const int surplus = count() - start - end;
    if (surplus > 0)
        model()->removeRows(start, surplus);
    for (int index = start; index < names.size() - end; ++index)
        insertItem(index, names[index].isValid() ? shown(names[index].toString()) : u"No machines"_s, names[index]);
}
