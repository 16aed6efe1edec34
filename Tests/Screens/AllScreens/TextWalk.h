#pragma once

// A walk over every widget that can be seen. What a widget shows, says to assistive technology or tells in a tool tip
// of a text from outside has to be that text, letter by letter: nothing of it read as markup, as a mnemonic or as a
// mark of the toolkit's own; and no widget may stand out of its window because of it.

#include "OutputPane/OutputPaneAccessible.h"
#include "Screens/ByName.h"
#include "Text/VisibleText.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHelpEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QSet>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolTip>

#include <algorithm>

namespace TextWalk
{

/// In every text that the walk looks for, and in none of the application's own.
inline const auto mark = QStringLiteral("hostile");

/// A text as it is compared: what is half a character stands for itself in one place, for the bytes that a tool made of
/// it in another.
inline QString comparable(const QString &text)
{
    constexpr char16_t replacement = 0xfffd;
    QString result;
    for (const char32_t character : text.toUcs4()) {
        if (character != replacement || !result.endsWith(replacement))
            result += QChar::fromUcs4(character);
    }
    return result;
}

/// Whether the beginning of `text` stands in `shown`, as it is, as it is written in one line, or as output is handed
/// out. No place cuts it sooner.
inline bool holds(const QString &shown, const QString &text)
{
    const QString beginning = text.left(80);
    const QString all = comparable(shown);
    return all.contains(comparable(beginning)) || all.contains(comparable(VisibleText::oneLine(beginning))) ||
           all.contains(comparable(OutputPaneAccessible::spoken(beginning)));
}

inline QStringList textsOf(QWidget &widget)
{
    QStringList texts;
    if (const auto *label = qobject_cast<QLabel *>(&widget))
        texts << label->text();
    if (const auto *picker = qobject_cast<QComboBox *>(&widget)) {
        for (int index = 0; index < picker->count(); ++index)
            texts << picker->itemText(index);
    }
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&widget);
    if (accessible == nullptr)
        return texts;
    for (const QAccessible::Text kind : {QAccessible::Name, QAccessible::Description, QAccessible::Value})
        texts << accessible->text(kind);
    if (QAccessibleTextInterface *content = accessible->textInterface())
        texts << content->text(0, std::min(content->characterCount(), 2000));
    return texts;
}

/// The texts in which the widget's class looks for a mnemonic, whatever the widget does.
inline QStringList textsWithMnemonics(const QWidget &widget)
{
    QStringList texts;
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        texts << button->text();
    if (const auto *box = qobject_cast<const QGroupBox *>(&widget))
        texts << box->title();
    if (const auto *label = qobject_cast<const QLabel *>(&widget); label != nullptr && label->buddy() != nullptr)
        texts << label->text();
    for (const QAction *action : widget.actions())
        texts << action->text() << action->toolTip() << action->statusTip();
    return texts;
}

inline void expectPlainToolTip(QWidget &widget, const QString &text)
{
    QHelpEvent event(QEvent::ToolTip, widget.rect().center(), widget.mapToGlobal(widget.rect().center()));
    QCoreApplication::sendEvent(&widget, &event);
    const QString tip = QToolTip::text();
    QToolTip::hideText();
    if (!tip.contains(mark))
        return;
    // Tips are read as markup where they look so.
    QTextDocument document;
    Qt::mightBeRichText(tip) ? document.setHtml(tip) : document.setPlainText(tip);
    EXPECT_TRUE(holds(document.toPlainText(), text)) << tip.left(200).toStdString();
}

inline void expectPlain(QWidget &widget)
{
    if (const auto *label = qobject_cast<QLabel *>(&widget)) {
        EXPECT_NE(label->textFormat(), Qt::RichText);
        EXPECT_TRUE(label->textFormat() == Qt::PlainText || !label->text().contains(mark));
    }
    if (const auto *alert = qobject_cast<QMessageBox *>(&widget)) {
        EXPECT_EQ(alert->textFormat(), Qt::PlainText);
    }
    // It reads markup wherever it stands.
    EXPECT_EQ(qobject_cast<QTextEdit *>(&widget), nullptr);
    EXPECT_FALSE(textsWithMnemonics(widget).join(u'\n').contains(mark));
}

inline void expectWithin(const QWidget &window, const QWidget &widget)
{
    const QRect place(widget.mapTo(&window, QPoint()), widget.size());
    EXPECT_GE(place.left(), 0);
    EXPECT_LE(place.right(), window.rect().right());
}

/// Walks through all windows that can be seen. Returns the classes of the widgets that hold the text.
inline QSet<QString> through(const QString &text)
{
    QList<QPointer<QWidget>> widgets;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        widgets << window;
        for (QWidget *widget : window->findChildren<QWidget *>())
            widgets << widget;
    }
    QSet<QString> found;
    for (const QPointer<QWidget> &widget : widgets) {
        // The toolkit's own tip may just be going away.
        if (!widget || !widget->isVisible() || widget->window()->inherits("QTipLabel"))
            continue;
        const QString name = QString::fromLatin1(widget->metaObject()->className());
        SCOPED_TRACE(name.toStdString() + ' ' + ByName::nameOf(widget).left(80).toStdString());
        expectPlain(*widget);
        expectWithin(*widget->window(), *widget);
        for (const QString &shown : textsOf(*widget)) {
            if (!shown.contains(mark))
                continue;
            found << name;
            EXPECT_TRUE(holds(shown, text)) << shown.left(300).toStdString();
        }
        expectPlainToolTip(*widget, text);
    }
    return found;
}

} // namespace TextWalk
