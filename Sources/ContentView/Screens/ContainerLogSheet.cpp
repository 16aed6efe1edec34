#include "ContentView/Screens/ContainerLogSheet.h"

#include "ContainerStore/ContainerStore.h"
#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/LogBox.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "Text/VisibleText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ContainerLogSheet::ContainerLogSheet(ContainerStore &containers, QWidget *parent)
    : QDialog(parent, Qt::Sheet),
      m_containers(containers)
{
    setFixedSize(640, 420);
    setWindowModality(Qt::WindowModal);
    auto *layout = new QVBoxLayout(this);
    auto *header = new QHBoxLayout;
    m_title = new PlainLabel({}, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, this);
    header->addWidget(m_title, 1);
    QPushButton *close = Controls::button(u"Close"_s, u"Close the container log"_s, this);
    header->addWidget(close);
    layout->addLayout(header);
    m_log = new LogBox(u"Container log"_s, 0, [this] { return m_containers.logText(); }, this);
    m_log->setMaximumHeight(QWIDGETSIZE_MAX);
    layout->addWidget(m_log, 1);

    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, [this] { m_containers.setShowLogs(false); });
    connect(&containers, &ContainerStore::logTitleChanged, this, &ContainerLogSheet::showFields);
    connect(&containers, &ContainerStore::logTextChanged, m_log, &LogBox::reload);
    showFields();
    close->setFocus();
}

void ContainerLogSheet::showFields()
{
    const QString title = u"Logs: "_s + m_containers.logTitle();
    m_title->setText(title);
    setWindowTitle(VisibleText::windowTitle(m_title->text()));
}
