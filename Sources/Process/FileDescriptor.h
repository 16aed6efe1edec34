#pragma once

// The owner of one open file descriptor: closed exactly once, moved but never copied.

#include <unistd.h>

#include <utility>

class FileDescriptor
{
public:
    FileDescriptor() = default;
    /// Owns the descriptor from now on; a negative number is a closed one.
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        if (this != &other) {
            close();
            m_number = std::exchange(other.m_number, -1);
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    /// -1 when closed, which is also what poll() skips.
    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

    void close()
    {
        // Not repeated when interrupted: the number may belong to another thread by then.
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }

private:
    int m_number = -1;
};
