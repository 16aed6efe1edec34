#pragma once

// A temporary file without a name, for this process alone: nobody else can open it, no child inherits it, and however
// this process ends the system takes the file away with it. Any thread.

#include <QByteArrayView>

#include <cstdint>
#include <memory>
#include <string>

class NamelessFile
{
public:
    /// Nothing, with errno set, when the folder does not allow it.
    static std::shared_ptr<NamelessFile> open(const std::string &folder);
    ~NamelessFile();
    NamelessFile(const NamelessFile &) = delete;
    NamelessFile &operator=(const NamelessFile &) = delete;

    /// Whether the file may become as large as `size` with at least that much of its disk left free, in bytes and as a
    /// share of the whole disk. Asks the system.
    bool mayGrow(std::int64_t size, std::int64_t reserve, double reserveShare) const;

    /// Writes all of it at a place, and returns 0 or the system's error number; then an unknown part is written.
    int write(std::int64_t place, QByteArrayView bytes) const;
    /// Whether an error number says that the disk has no more room for this user.
    static bool isOutOfRoom(int error);

    /// Reads exactly that much; false when that is not to be had.
    bool read(std::int64_t place, char *bytes, std::size_t size) const;

private:
    explicit NamelessFile(int descriptor) : m_descriptor(descriptor) {}

    const int m_descriptor;
};
