#pragma once

// A search that never keeps the main thread waiting: it goes on in a thread of its own, and its news come as signals.
// The thread begins with the first search and ends with this object, which waits for it no longer than reading one
// piece of text takes. Main thread.

#include "Text/TextPattern.h"
#include "Transcript/TextSnapshot.h"

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

class SearchThread : public QObject
{
    Q_OBJECT

public:
    using Position = TextPiece::Position;

    enum class Direction { forward, backward };

    /// How often the text occurs, and which of its matches, counted from one, was found last; 0 when that is no more.
    struct Count {
        std::int64_t number = 0;
        std::int64_t all = 0;
    };

    explicit SearchThread(QObject *parent);
    ~SearchThread() override;

    /// Searches for something else from now on, where a position is given also for the first match from there on.
    void search(const TextPattern &pattern, TextSnapshot text, std::optional<Position> from = {});
    /// Searches for nothing; no news come any more.
    void stop();
    /// Finds the next match that begins at a position or behind it, or the last one that begins before it; past the
    /// text's end or beginning it goes on at the other.
    void step(TextSnapshot text, Direction direction, Position position);
    /// The text has become this one, as TextSearch::setText takes it.
    void update(TextSnapshot text);

Q_SIGNALS:
    /// A match that was asked for; nothing when there is none.
    void found(std::optional<TextMatch> match);
    /// Everything in the text that was given last, or shortly before, is counted.
    void counted(SearchThread::Count count);

private:
    struct Wish {
        Direction direction = Direction::forward;
        Position position = 0;
    };
    struct Request {
        int search = 0;
        std::optional<TextPattern> pattern;
        std::optional<TextSnapshot> text;
        std::optional<Wish> wish;
        bool ends = false;
    };

    void ask(Request request);
    Request waitForRequest();
    void run();
    void tell(int search, const std::function<void()> &news);

    std::thread m_thread;
    /// The number of the search that goes on; news of an earlier one are not told.
    int m_search = 0;

    std::mutex m_lock; // guards the request
    std::condition_variable m_wake;
    Request m_request;
    /// There is one; asked without the lock.
    std::atomic<bool> m_isAsked = false;
};
