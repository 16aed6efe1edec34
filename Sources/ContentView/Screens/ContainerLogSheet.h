#pragma once

// The sheet with the log of one container, over the window and modal to it. Closing it by any means sets the store's
// `showLogs` to false.

#include <QDialog>

class ContainerStore;
class LogBox;
class PlainLabel;

class ContainerLogSheet : public QDialog
{
    Q_OBJECT

public:
    /// `containers` must outlive it.
    explicit ContainerLogSheet(ContainerStore &containers, QWidget *parent = nullptr);

private:
    void showFields();

    ContainerStore &m_containers;
    PlainLabel *m_title;
    LogBox *m_log;
};
