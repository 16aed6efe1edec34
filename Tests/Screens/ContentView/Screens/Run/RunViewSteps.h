#pragma once

// What a user does on the Run screen, in a call each.

#include "ContentView/Screens/Run/MachinePicker.h"
#include "ContentView/Screens/Run/RunView.h"
#include "ContentView/Screens/Run/ScriptEditor.h"
#include "Look/Colours.h"
#include "Look/IndeterminateProgress.h"
#include "Look/PlainLabel.h"
#include "Screens/TestWindow.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>

using namespace Qt::StringLiterals;
using ByName::find;
using ByName::isOffered;
using ByName::press;
using ByName::shows;

inline const auto packagesField = u"Packages, e.g. git curl"_s;
inline const auto folderWarning =
    u"Warning: a script can change or delete files in a shared folder. The command runs with that folder "
    "as its working directory."_s;
inline const auto nothingPersists =
    u"Each run creates a fresh machine, runs in it, then deletes it. Nothing persists."_s;
inline const auto startHint = u"Start OrbStack to run commands."_s;

inline void confirmDisposable()
{
    QSettings().setValue(u"disposableConfirmed"_s, true);
}

inline QMessageBox *alert()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box != nullptr && box->isVisible())
            return box;
    }
    return nullptr;
}

inline QCheckBox *toggle(const QWidget &content, const QString &name)
{
    return find<QCheckBox>(content, name);
}

inline QFileDialog *openFolderDialog(ContentView &content)
{
    press(content, u"Share a folder…"_s);
    return content.findChild<QFileDialog *>();
}

inline void shareFolder(ContentView &content, const QString &path)
{
    QFileDialog *dialog = openFolderDialog(content);
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
    press(*dialog, u"Share"_s);
    EXPECT_FALSE(dialog->isVisible());
}

inline QString runScript(TestWindow &window, const QString &script)
{
    window.run.setScript(script);
    // Not by the mouse, of which two clicks in quick succession are one wish.
    EXPECT_TRUE(isOffered(window.content(), u"Run"_s));
    find<QPushButton>(window.content(), u"Run"_s)->click();
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
    return window.run.plainText();
}
