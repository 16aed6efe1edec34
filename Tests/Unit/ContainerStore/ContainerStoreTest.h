#pragma once

// A container store over a `docker` of the test's own.

#include "ContainerStore/ContainerStore.h"
#include "Support/TestTools.h"
#include "Support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

inline const ContainerInfo web{u"0a1b"_s, u"web"_s, u"nginx"_s, u"running"_s, u"Up 2 minutes"_s, u"80/tcp"_s};

inline const QString webLine =
    uR"({"ID":"0a1b","Names":"web","Image":"nginx","State":"running","Status":"Up 2 minutes","Ports":"80/tcp"})"_s;

inline const QString listCall = u"<ps><-a><--format><{{json .}}>"_s;

// A docker whose `ps` prints one container and whose other verbs do what `body` says.
inline QString dockerWith(const QString &body)
{
    return u"if [ \"$1\" = ps ]; then printf '%s\\n' '"_s + webLine + u"'; exit 0; fi\n"_s + body;
}

class ContainerStoreTest : public testing::Test
{
protected:
    bool untilIdle()
    {
        return waitUntil([this] { return !store.busy(); });
    }

    // Waits until the operation and the listing that follows it are over.
    bool untilListed()
    {
        return waitUntil([this] { return !store.busy() && !store.containers().isEmpty(); });
    }

    void write(const QString &name, const QByteArray &content)
    {
        QFile file(tools.path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    TestTools tools;
    ContainerStore store;
};

using ContainerStoreRefresh = ContainerStoreTest;
using ContainerStoreAction = ContainerStoreTest;
using ContainerStoreLogs = ContainerStoreTest;
using ContainerStoreRun = ContainerStoreTest;
