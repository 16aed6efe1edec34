#include "TidewellApp/Quitting/AbruptExit.h"

#include <cstdlib>
#include <utility>

namespace
{

std::function<void()> &current()
{
    // Never destroyed: other objects of its kind may be before it is called.
    static auto *const function = new std::function<void()>;
    return *function;
}

void callCurrent()
{
    if (const std::function<void()> function = std::exchange(current(), nullptr))
        function();
}

} // namespace

AbruptExit::AbruptExit(std::function<void()> function)
{
    static const int registered = std::atexit(callCurrent);
    static_cast<void>(registered);
    current() = std::move(function);
}

AbruptExit::~AbruptExit()
{
    current() = nullptr;
}
