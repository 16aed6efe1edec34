#pragma once

// Calls a function when the program is ended from below with exit(), which comes back to nobody. Qt does that when it
// loses the display. Not called when the program ends as it should, for it is gone by then.

#include <functional>

class AbruptExit
{
public:
    /// One at a time. `function` is called without an event loop, when objects without an owner may be gone already.
    explicit AbruptExit(std::function<void()> function);
    ~AbruptExit();

    AbruptExit(const AbruptExit &) = delete;
    AbruptExit &operator=(const AbruptExit &) = delete;
};
