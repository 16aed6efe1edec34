#include "Unit/AllControllers/Faults.h"

#include <QFile>

#include <csignal>

using namespace Qt::StringLiterals;

namespace
{

constexpr int floodSize = 3'000'000; // far more than a pipe holds

CLIResult missing(const QString &reason)
{
    CLIResult result = ended(-1, {}, u"Could not start %1: "_s + reason + u'\n');
    result.launchError = reason;
    return result;
}

CLIResult late()
{
    CLIResult result = ended(SIGTERM);
    result.timedOut = true;
    return result;
}

} // namespace

CLIResult ended(int status, const QString &output, const QString &errors)
{
    CLIResult result;
    result.status = status;
    result.stdout = output;
    result.stderr = errors;
    return result;
}

const QList<Fault> &allFaults()
{
    // One word without a blank, so that no list is read from it.
    const QString garbage = u"\ufffd\ufffd"_s + QChar(0) + u"[{\"\ufffd\u001b[31m\n"_s;
    static const QList<Fault> faults{
        {"IsAbsent", u"rm"_s, missing(u"No such file or directory"_s), true},
        {"IsNotExecutable", u"chmod -x"_s, missing(u"Permission denied"_s), true},
        {"ExitsWithOne", u"echo it broke >&2; exit 1"_s, ended(1, {}, u"it broke\n"_s)},
        {"IsKilled", u"kill -KILL $$"_s, ended(SIGKILL)},
        {"Hangs", u"exec sleep 600"_s, late(), false, true},
        {"HangsAndIgnoresTermination",
         u"trap ': > \"$folder/asked\"' TERM; while [ ! -e \"$folder/released\" ]; do sleep 0.02; done; exit 3"_s,
         late(), false, true},
        {"Floods", u"head -c %1 /dev/zero | tr '\\0' y; exit 1"_s.arg(floodSize), ended(1, QString(floodSize, u'y'))},
        {"PrintsGarbage", u"printf '\\377\\376\\000[{\"\\200\\033[31m\\n'; exit 0"_s, ended(0, garbage)},
        {"EndsWithinACharacter", u"printf 'caf\\303'; exit 0"_s, ended(0, u"caf\ufffd"_s)},
        {"IsSlow", u"sleep 0.1"_s, {}, false, false, true},
    };
    return faults;
}

void FaultyTools::failAt(int number, const Fault &fault, const QString &before)
{
    QFile::remove(path(u"asked"_s));
    QFile::remove(path(u"released"_s));
    addFile(u"count"_s, "0\n");
    const QString spoil = fault.body + u" '%1/orb' '%1/docker' '%1/brew'"_s.arg(directory(0));
    const QString body =
        u"folder='%1'; read -r count < \"$folder/count\"; count=$((count + 1)); echo $count > \"$folder/count\"\n"_s
            .arg(path(QString())) +
        u"if [ $count = %1 ]; then %2; fi\n"_s.arg(number).arg(fault.isMissing ? u":"_s : fault.body) +
        u"if [ $count = %1 ]; then %2; fi\n"_s.arg(number - 1).arg(fault.isMissing ? spoil : u":"_s) + before +
        u"\ncase \"${0##*/} $1 $2\" in\n"
        "'orb list -f') printf '[{\"name\":\"box\",\"state\":\"running\"}]';;\n"
        "'orb list '*) echo 'box running';;\n"
        "'orb status '*) echo Running;;\n"
        "'orb -m '*) read -r line; echo ran;;\n"
        "'docker ps '*) echo '{\"ID\":\"0a1b\",\"Names\":\"web\"}';;\n"
        "'docker logs '*) echo a log;;\n"
        "esac"_s;
    for (const QString &tool : {u"orb"_s, u"docker"_s, u"brew"_s}) {
        addTool(tool, body);
        const QString file = directory(0) + u'/' + tool;
        if (fault.isMissing && number == 1 && fault.body == u"rm"_s)
            QFile::remove(file);
        else if (fault.isMissing && number == 1)
            QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    }
}

bool FaultyTools::wasAskedInVain() const
{
    return QFile::exists(path(u"asked"_s));
}

void FaultyTools::release()
{
    addFile(u"released"_s);
}

CLIResult Replay::next(const QString &tool, const CLIResult &working)
{
    ++m_calls;
    const bool fails = m_fault.isMissing ? m_calls >= m_number : m_calls == m_number && !m_fault.works;
    if (m_number == 0 || !fails)
        return working;
    CLIResult result = m_fault.result;
    if (m_fault.isMissing)
        result.stderr = result.stderr.arg(tool);
    return result;
}
