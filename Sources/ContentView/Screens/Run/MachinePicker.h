#pragma once

// Chooses one of the store's machines by name. A refreshed list changes only what differs, so an open list stays open
// and the choice stays chosen.

#include "Look/Picker.h"
#include "MachineStore/Machine.h"

#include <QList>
#include <QVariant>

class MachinePicker : public Picker
{
    Q_OBJECT

public:
    explicit MachinePicker(QWidget *parent = nullptr);

    /// Offers these machines, or the entry "No machines", with `selected` chosen.
    void showMachines(const QList<Machine> &machines, const QString &selected);

    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user chose a machine.
    void chosen(const QString &name);

private:
    /// Makes these the entries; the empty value stands for "No machines".
    void showEntries(const QVariantList &names);
};
