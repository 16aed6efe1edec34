#pragma once

// Chooses the folder of the Mac that runs work in: a button that opens the system's dialog and, once there is a folder,
// its path and a button that gives it up.

#include <QPointer>
#include <QWidget>

#include <optional>

class PlainLabel;
class QFileDialog;
class QPushButton;

class FolderPicker : public QWidget
{
    Q_OBJECT

public:
    explicit FolderPicker(QWidget *parent = nullptr);

    /// Absolute path; none when no folder is shared.
    const std::optional<QString> &folder() const { return m_folder; }

Q_SIGNALS:
    void folderChanged();

private:
    void chooseFolder();
    void setFolder(const std::optional<QString> &folder);

    std::optional<QString> m_folder;
    QPushButton *m_share;
    PlainLabel *m_path;
    QPushButton *m_clear;
    /// The last dialog; it goes after it was closed.
    QPointer<QFileDialog> m_dialog;
};
