#pragma once

#include <coroutine>
#include <optional>
#include <utility>

/// Suspends one coroutine until a callback supplies a value: a local of that coroutine, awaited once (`co_await
/// end.value()`) and resumed once, both on one thread. The coroutine stays alive meanwhile because it waits here.
template <typename Value>
class Continuation
{
public:
    Continuation() = default;
    Continuation(const Continuation &) = delete;
    Continuation &operator=(const Continuation &) = delete;

    void resume(Value value)
    {
        m_value = std::move(value);
        if (m_waiting)
            m_waiting.resume();
    }

    /// What is awaited only points here: a compiler may await a copy of it.
    struct Awaiter {
        Continuation *continuation;

        bool await_ready() const { return continuation->m_value.has_value(); }
        void await_suspend(std::coroutine_handle<> waiting) const { continuation->m_waiting = waiting; }
        Value await_resume() const { return std::move(*continuation->m_value); }
    };
    Awaiter value() { return Awaiter{this}; }

private:
    std::optional<Value> m_value;
    std::coroutine_handle<> m_waiting;
};
