#include "ContentView/RunActions.h"

using namespace Qt::StringLiterals;

RunActions::RunActions(QObject *parent)
    : run(new ButtonAction(u"&Run"_s, {Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter}, parent)),
      stop(new ButtonAction(u"&Stop"_s, {Qt::CTRL | Qt::Key_Period}, parent)),
      copyOutput(new ButtonAction(u"&Copy Output"_s, {Qt::CTRL | Qt::SHIFT | Qt::Key_C}, parent)),
      clearOutput(new ButtonAction(u"C&lear Output"_s, {Qt::CTRL | Qt::Key_K}, parent))
{
}
