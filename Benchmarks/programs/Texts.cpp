// Texts KIND MEBIBYTES: prints a text to measure with; the kinds are plain, wide, one-line and codes.

#include "Support/OutputTexts.h"

#include <cstdio>
#include <cstdlib>

int main(int argumentCount, char *arguments[])
{
    const auto kind = argumentCount == 3 ? OutputTexts::kindNamed(arguments[1]) : std::nullopt;
    if (!kind) {
        std::fputs("Texts plain|wide|one-line|codes MEBIBYTES\n", stderr);
        return 2;
    }
    OutputTexts lines(*kind);
    const std::size_t size = std::strtoull(arguments[2], nullptr, 10) * 1024 * 1024;
    for (std::size_t written = 0; written < size;) {
        const std::string line = lines.next();
        if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size())
            return 1;
        written += line.size();
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
