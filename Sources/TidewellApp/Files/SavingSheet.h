#pragma once

#include <QDialog>

class QProgressBar;
class QPushButton;

/// The sheet that tells how far the saving of a file has come. Cancel, Escape and closing it only ask for the end: it
/// stays until whoever made it deletes it.
class SavingSheet : public QDialog
{
    Q_OBJECT

public:
    /// `name` as FileDialogs::quotedName gives it.
    SavingSheet(const QString &name, QWidget *parent);

    /// From 0 to 1.
    void setProgress(double part);

    void reject() override;

Q_SIGNALS:
    void cancelled();

private:
    QProgressBar *m_bar;
    QPushButton *m_cancel;
};
