#include "ContentView/Screens/Run/DisposableToggle.h"

#include "Look/Alert.h"

#include <QMessageBox>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace
{

const auto confirmedKey = u"disposableConfirmed"_s;

bool isConfirmed()
{
    return QSettings().value(confirmedKey, false).toBool();
}

} // namespace

DisposableToggle::DisposableToggle(QWidget *parent) : QCheckBox(u"Disposable mode"_s, parent)
{
    // Here and not where a click arrives: assistive technology switches a box without one.
    connect(this, &QCheckBox::toggled, this, [this](bool isOn) {
        if (!isOn || isConfirmed())
            return;
        setChecked(false);
        if (!m_alert || !m_alert->isVisible())
            ask();
    });
}

void DisposableToggle::ask()
{
    m_alert = Alert::open(this, u"Use disposable mode?"_s,
                          u"Every run will create a brand new Linux machine, run your commands, and then delete the "
                          "machine. This takes longer, and anything created inside is lost."_s,
                          u"Turn on"_s, u"Cancel"_s, [this] {
                              QSettings().setValue(confirmedKey, true);
                              setChecked(true);
                          });
}

void DisposableToggle::takeOverConsent(QSettings &former)
{
    if (!former.contains(confirmedKey))
        return;
    if (!isConfirmed())
        QSettings().setValue(confirmedKey, former.value(confirmedKey));
    former.remove(confirmedKey);
}
