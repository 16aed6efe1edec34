#include "Support/TestTools.h"

#include "OrbCLI/ToolDirectories.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cstdio>
#include <stdexcept>

namespace
{

std::vector<std::string> directories{"/nonexistent/a", "/nonexistent/b", "/nonexistent/c"};
std::vector<std::string> brewPlaces{"/nonexistent/a/brew", "/nonexistent/b/brew"};

} // namespace

const std::vector<std::string> &OrbCLI::toolDirectories()
{
    return directories;
}

const std::vector<std::string> &OrbCLI::brewCandidates()
{
    return brewPlaces;
}

TestTools::TestTools()
{
    if (!m_folder.isValid())
        throw std::runtime_error("no temporary folder");
    directories.clear();
    for (int index = 0; index < 3; ++index) {
        QDir().mkpath(directory(index));
        directories.push_back(directory(index).toStdString());
    }
    brewPlaces = {directories[0] + "/brew", directories[1] + "/brew"};
}

TestTools::~TestTools()
{
    directories = {"/nonexistent/a", "/nonexistent/b", "/nonexistent/c"};
    brewPlaces = {"/nonexistent/a/brew", "/nonexistent/b/brew"};
    // A tool that begins right now may record its call between the removal of what is in the folder and its own: such a
    // tool would then wait for its file for ever.
    for (int attempts = 0; attempts < 10 && !m_folder.remove(); ++attempts) {
    }
}

QString TestTools::directory(int index) const
{
    return path(QStringLiteral("bin%1").arg(index));
}

QString TestTools::path(const QString &name) const
{
    return m_folder.filePath(name);
}

QString TestTools::addTool(const QString &name, const QString &body, int directoryIndex)
{
    const QString toolPath = directory(directoryIndex) + u'/' + name;
    const QString callsPath = path(name + QStringLiteral(".calls"));
    // Put in place as a whole: a shell may still be reading the tool that was here.
    QFile file(toolPath + QStringLiteral(".new"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw std::runtime_error("cannot write the tool");
    // One write per call, so that calls made at the same time do not mix.
    file.write(QStringLiteral("#!/bin/sh\n"
                              "{ line=; for argument in \"$@\"; do line=\"$line<$argument>\"; done; "
                              "printf '%s\\n' \"$line\" >> '%1'; }\n%2\n")
                   .arg(callsPath, body)
                   .toUtf8());
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (std::rename(file.fileName().toUtf8().constData(), toolPath.toUtf8().constData()) != 0)
        throw std::runtime_error("cannot put the tool in place");
    return toolPath;
}

void TestTools::setInterpreter(const QString &name, const QString &interpreter, int directoryIndex)
{
    QFile file(directory(directoryIndex) + u'/' + name);
    if (!file.open(QIODevice::ReadWrite))
        throw std::runtime_error("no such tool");
    const QByteArray script = file.readAll();
    file.resize(0);
    file.seek(0);
    file.write("#!" + interpreter.toUtf8() + script.mid(script.indexOf('\n')));
}

QString TestTools::addFile(const QString &name, const QByteArray &content)
{
    // Whoever waits for the file finds it whole.
    QSaveFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        throw std::runtime_error("cannot write the file");
    return path(name);
}

QString TestTools::waitForFile(const QString &name, double pause) const
{
    // Not beyond the test, which may leave a tool behind that will not be terminated.
    return QStringLiteral("while [ ! -e '%1' ] && [ -d '%2' ]; do sleep %3; done\n")
        .arg(path(name), m_folder.path(), QString::number(pause));
}

QString TestTools::tellByFile(const QString &name) const
{
    return QStringLiteral(": > '%1'\n").arg(path(name));
}

bool TestTools::hasFile(const QString &name) const
{
    return QFile::exists(path(name));
}

QString TestTools::untilTerminated(int status)
{
    return QStringLiteral("trap 'exit %1' TERM; while :; do sleep 0.01; done\n").arg(status);
}

QStringList TestTools::calls(const QString &name) const
{
    QFile file(path(name + QStringLiteral(".calls")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

void TestTools::removeTool(const QString &name, int directoryIndex)
{
    QFile::remove(directory(directoryIndex) + u'/' + name);
}
