#include "ContentView/ComingScreens.h"

#include "ContentView/Colours.h"
#include "ContentView/PlainLabel.h"
#include "ContentView/Typography.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace
{

QWidget *announcing(const QString &title, const QString &sentence)
{
    auto *screen = new QWidget;
    auto *layout = new QVBoxLayout(screen);
    layout->addWidget(
        new PlainLabel(title, Typography::headline(), Colours::primary, PlainLabel::Fit::elideEnd, screen));
    layout->addWidget(new PlainLabel(sentence, Typography::body(), Colours::secondary, PlainLabel::Fit::wrap, screen));
    layout->addStretch();
    return screen;
}

} // namespace

QWidget *ComingScreens::machines()
{
    return announcing(u"Machines"_s,
                      u"This screen is coming: it will list, create, start, stop and delete machines."_s);
}

QWidget *ComingScreens::history()
{
    return announcing(u"History"_s,
                      u"This screen is coming: it will list the last 50 runs and load one again. Runs are "
                      "being recorded already."_s);
}

QWidget *ComingScreens::containers()
{
    return announcing(u"Containers"_s, u"This screen is coming: it will list Docker containers and start new ones."_s);
}
