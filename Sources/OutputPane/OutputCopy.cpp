#include "OutputPane/OutputCopy.h"

#include "Look/Alert.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

void OutputCopy::copy(QWidget *widget, const TextView &text, TextView::Position from, TextView::Position to,
                      TextView::Position bound)
{
    if (to - from > bound)
        Alert::tell(widget, u"This is too much output to copy."_s, u"Select 512 MiB or less and copy that."_s);
    else
        QGuiApplication::clipboard()->setText(text.text(from, to));
}
