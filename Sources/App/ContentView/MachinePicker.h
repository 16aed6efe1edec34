#pragma once

// Chooses one of the store's machines by name. A refreshed list changes only what differs, so an open list stays open
// and the choice stays chosen.

#include "MachineStore/Machine.h"

#include <QComboBox>
#include <QList>

class MachinePicker : public QComboBox
{
    Q_OBJECT

public:
    explicit MachinePicker(QWidget *parent = nullptr);

    /// Offers these machines, or the entry "No machines", with `selected` chosen.
    void showMachines(const QList<Machine> &machines, const QString &selected);

    QSize minimumSizeHint() const override;

protected:
    /// Scrolling the screen must not choose another machine by the way.
    void wheelEvent(QWheelEvent *event) override;

Q_SIGNALS:
    /// The user chose a machine.
    void chosen(const QString &name);

private:
    void showNames(const QStringList &names);
};
