#include "ContentView/Screens/Run/FolderPicker.h"

#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/NestedLoops.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"

#include <QFileDialog>
#include <QHBoxLayout>

using namespace Qt::StringLiterals;

FolderPicker::FolderPicker(QWidget *parent) : QWidget(parent)
{
    m_share = Controls::button(u"Share a folder…"_s, {}, this);
    m_path = new PlainLabel({}, Typography::caption(), Colours::primary, PlainLabel::Fit::elideMiddle, this);
    m_clear = Controls::button(u"Clear"_s, u"Stop sharing the folder"_s, this);
    connect(m_share, &QPushButton::clicked, this, &FolderPicker::chooseFolder);
    connect(m_clear, &QPushButton::clicked, this, [this] {
        m_share->setFocus();
        setFolder({});
    });

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(m_share);
    row->addWidget(m_path);
    row->addWidget(m_clear);
    m_path->hide();
    m_clear->hide();
}

void FolderPicker::chooseFolder()
{
    if (m_dialog && m_dialog->isVisible())
        return;
    m_dialog = new QFileDialog(this, u"Share a folder"_s, m_folder.value_or(QDir::homePath()));
    m_dialog->setFileMode(QFileDialog::Directory);
    m_dialog->setOption(QFileDialog::ShowDirsOnly);
    m_dialog->setLabelText(QFileDialog::Accept, u"Share"_s);
    m_dialog->setWindowModality(Qt::WindowModal);
    connect(m_dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        if (!path.isEmpty())
            setFolder(QDir::cleanPath(path));
    });
    connect(m_dialog, &QFileDialog::finished, m_share, [this] {
        m_share->setFocus();
        NestedLoops::deleteAfter(m_dialog);
    });
    m_dialog->open();
}

void FolderPicker::setFolder(const std::optional<QString> &folder)
{
    if (folder == m_folder)
        return;
    m_folder = folder;
    m_path->setText(folder.value_or(QString()));
    m_path->setVisible(folder.has_value());
    m_clear->setVisible(folder.has_value());
    Q_EMIT folderChanged();
}
