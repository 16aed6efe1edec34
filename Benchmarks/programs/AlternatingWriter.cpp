// AlternatingWriter FILE [one]: writes the lines of a file, one at a time, by turns to standard output and to standard
// error, or all to standard output.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

int main(int argumentCount, char *arguments[])
{
    if (argumentCount < 2)
        return 2;
    const int file = ::open(arguments[1], O_RDONLY);
    struct stat status = {};
    if (file < 0 || ::fstat(file, &status) != 0)
        return 2;
    const auto size = static_cast<std::size_t>(status.st_size);
    void *const mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (mapped == MAP_FAILED)
        return 2;

    const int other = argumentCount > 2 ? STDOUT_FILENO : STDERR_FILENO;
    int target = STDOUT_FILENO;
    for (std::string_view rest(static_cast<const char *>(mapped), size); !rest.empty();) {
        const std::string_view line = rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1);
        if (::write(target, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            return 1;
        rest.remove_prefix(line.size());
        target = target == STDOUT_FILENO ? other : STDOUT_FILENO;
    }
    return 0;
}
