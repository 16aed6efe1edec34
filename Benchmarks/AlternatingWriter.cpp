// AlternatingWriter FILE [one]: writes the lines of a file, one at a time, by turns to standard output and to standard
// error, or all to standard output.

#include <unistd.h>

#include <fstream>
#include <string>

int main(int argumentCount, char *arguments[])
{
    if (argumentCount < 2)
        return 2;
    const int other = argumentCount > 2 ? STDOUT_FILENO : STDERR_FILENO;
    std::ifstream file(arguments[1]);
    std::string line;
    for (int target = STDOUT_FILENO; std::getline(file, line);
         target = target == STDOUT_FILENO ? other : STDOUT_FILENO) {
        line += '\n';
        if (::write(target, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            return 1;
    }
    return 0;
}
