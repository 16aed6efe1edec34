#include "TidewellApp/Files/SavingSheet.h"

#include "Look/Colours.h"
#include "Look/Controls.h"
#include "Look/PlainLabel.h"
#include "Look/Typography.h"
#include "Text/VisibleText.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace
{

constexpr int steps = 1000;

} // namespace

SavingSheet::SavingSheet(const QString &name, QWidget *parent)
    : QDialog(parent, Qt::Sheet),
      m_bar(new QProgressBar(this)),
      m_cancel(Controls::button(u"Cancel"_s, u"Cancel the saving"_s, this))
{
    setWindowModality(Qt::WindowModal);
    setFixedWidth(420);
    auto *title = new PlainLabel(u"Saving "_s + name + u'…', Typography::headline(), Colours::primary,
                                 PlainLabel::Fit::elideMiddle, this);
    setWindowTitle(VisibleText::windowTitle(title->text()));
    m_bar->setRange(0, steps);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(title->text());
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(m_bar, 1);
    row->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    layout->addWidget(title);
    layout->addLayout(row);
}

void SavingSheet::setProgress(double part)
{
    m_bar->setValue(static_cast<int>(std::lround(part * steps)));
}

void SavingSheet::reject()
{
    m_cancel->setEnabled(false);
    Q_EMIT cancelled();
}
