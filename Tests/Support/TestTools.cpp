#include "Support/TestTools.h"

#include "OrbCLI/ToolDirectories.h"

#include <QDir>
#include <QFile>

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
    QFile file(toolPath);
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
    return toolPath;
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
