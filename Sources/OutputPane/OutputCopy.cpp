#include "OutputPane/OutputCopy.h"

#include "Look/Alert.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

void OutputCopy::copy(QWidget *widget, const Transcript &transcript, Transcript::Position from, Transcript::Position to,
                      Transcript::Position bound)
{
    if (to - from > bound)
        Alert::tell(widget, u"This is too much output to copy."_s, u"Select 512 MiB or less and copy that."_s);
    else
        QGuiApplication::clipboard()->setText(transcript.text().text(from, to));
}
