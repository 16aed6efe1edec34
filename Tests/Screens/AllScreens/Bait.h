#pragma once

// A picture in a file and a port of this computer, for markup to name: they tell whether anybody asked for them.

#include <QImage>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/inotify.h>
#endif

class Bait
{
public:
    Bait() : m_socket(::socket(AF_INET, SOCK_STREAM, 0))
    {
        EXPECT_TRUE(picture().save(path()));
#ifdef __linux__
        m_notices = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        EXPECT_GE(::inotify_add_watch(m_notices, path().toLocal8Bit().constData(), IN_OPEN), 0);
#endif
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<sockaddr *>(&address), size), 0);
        EXPECT_EQ(::listen(m_socket, 8), 0);
        EXPECT_EQ(::getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &size), 0);
        m_port = ntohs(address.sin_port);
    }

    ~Bait()
    {
        ::close(m_socket);
        ::close(m_notices);
    }

    Bait(const Bait &) = delete;
    Bait &operator=(const Bait &) = delete;

    QString path() const { return m_folder.filePath(QStringLiteral("a.png")); }
    int port() const { return m_port; }

    /// Whether the file was opened since the last time (on Linux, where the system tells), or the port was called.
    bool wasTaken() const
    {
        char notice[4096];
        const bool wasOpened = ::read(m_notices, notice, sizeof notice) > 0;
        pollfd call{m_socket, POLLIN, 0};
        return wasOpened || ::poll(&call, 1, 0) != 0;
    }

private:
    static QImage picture()
    {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }

    /// Of a short path on every system, so that no place cuts it.
    QTemporaryDir m_folder{QStringLiteral("/tmp/bait-XXXXXX")};
    int m_notices = -1;
    const int m_socket;
    int m_port = 0;
};
