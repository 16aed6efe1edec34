// BlockWriter SIZE TOTAL: writes TOTAL bytes to standard output in writes of SIZE bytes, as lines of 80 characters.

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

int main(int argumentCount, char *arguments[])
{
    if (argumentCount != 3)
        return 2;
    const std::size_t size = std::strtoull(arguments[1], nullptr, 10);
    std::size_t remaining = std::strtoull(arguments[2], nullptr, 10);
    std::string block(size, 'x');
    for (std::size_t end = 79; end < size; end += 80)
        block[end] = '\n';
    while (remaining > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, block.data(), std::min(size, remaining));
        if (written <= 0)
            return 1;
        remaining -= static_cast<std::size_t>(written);
    }
    return 0;
}
