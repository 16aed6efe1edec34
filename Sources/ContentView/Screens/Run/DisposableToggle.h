#pragma once

// The toggle of disposable mode. The first time ever that the user turns it on it asks whether that is meant, and stays
// off until the answer is yes; the consent is remembered in the user's preferences ("disposableConfirmed"). Whoever
// follows `toggled` asks `isChecked()`: the box may have gone back meanwhile.

#include <QCheckBox>
#include <QPointer>

class QMessageBox;
class QSettings;

class DisposableToggle : public QCheckBox
{
    Q_OBJECT

public:
    explicit DisposableToggle(QWidget *parent = nullptr);

    /// Moves the consent from `former` preferences to the user's present ones, when it is there.
    static void takeOverConsent(QSettings &former);

private:
    void ask();

    /// The last alert; it goes after it was closed.
    QPointer<QMessageBox> m_alert;
};
