#include "Find/SearchThread.h"

#include "Find/TextSearch.h"

#include <system_error>

SearchThread::SearchThread(QObject *parent) : QObject(parent) {}

SearchThread::~SearchThread()
{
    if (!m_thread.joinable())
        return;
    Request request;
    request.ends = true;
    ask(std::move(request));
    m_thread.join();
}

void SearchThread::search(const TextPattern &pattern, TextSnapshot text, std::optional<Position> from)
{
    ++m_search;
    Request request;
    request.pattern = pattern;
    request.text = std::move(text);
    if (from)
        request.wish = {Direction::forward, *from};
    ask(std::move(request));
}

void SearchThread::stop()
{
    ++m_search;
    Request request;
    request.pattern = TextPattern();
    if (m_thread.joinable())
        ask(std::move(request));
}

void SearchThread::step(TextSnapshot text, Direction direction, Position position)
{
    Request request;
    request.text = std::move(text);
    request.wish = {direction, position};
    ask(std::move(request));
}

void SearchThread::update(TextSnapshot text)
{
    Request request;
    request.text = std::move(text);
    ask(std::move(request));
}

/// What was asked before and is not yet begun is asked together with it, as far as it is not replaced.
void SearchThread::ask(Request request)
{
    {
        const std::lock_guard lock(m_lock);
        if (request.pattern) {
            m_request.pattern = std::move(request.pattern);
            m_request.wish.reset();
        }
        if (request.text)
            m_request.text = std::move(request.text);
        if (request.wish)
            m_request.wish = request.wish;
        m_request.ends = m_request.ends || request.ends;
        m_request.search = m_search;
        m_isAsked = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable())
        return;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error &) {
        return; // no thread is to be had now: what is asked waits for the next that is asked
    }
}

SearchThread::Request SearchThread::waitForRequest()
{
    std::unique_lock lock(m_lock);
    m_wake.wait(lock, [this] { return m_isAsked.load(); });
    m_isAsked = false;
    return std::exchange(m_request, {});
}

void SearchThread::run()
{
    std::optional<TextSearch> search;
    std::optional<Wish> wish;
    std::optional<TextMatch> current;
    while (true) {
        Request request = waitForRequest();
        if (request.ends)
            return;
        if (request.pattern) {
            search.reset();
            wish.reset();
            current.reset();
            if (!request.pattern->isEmpty())
                search.emplace(*std::move(request.pattern), [this] { return m_isAsked.load(); });
        }
        if (!search)
            continue;
        if (request.text) {
            if (current && (request.text->isEmpty() || current->begin < request.text->begin()))
                current.reset();
            search->setText(*std::move(request.text));
        }
        if (request.wish)
            wish = request.wish;
        if (wish) {
            const auto match = wish->direction == Direction::forward ? search->firstFrom(wish->position)
                                                                     : search->lastBefore(wish->position);
            // Without a match it may have been interrupted; then it goes on with the next request.
            if (!match && m_isAsked)
                continue;
            wish.reset();
            current = match;
            tell(request.search, [this, match] { Q_EMIT found(match); });
        }
        while (!search->isComplete() && !m_isAsked)
            search->countOn();
        if (!search->isComplete())
            continue;
        const Count count{current ? search->countBefore(current->begin) + 1 : 0, search->count()};
        tell(request.search, [this, count] { Q_EMIT counted(count); });
        search->releaseText();
    }
}

void SearchThread::tell(int search, const std::function<void()> &news)
{
    QMetaObject::invokeMethod(
        this,
        [this, search, news] {
            if (search == m_search)
                news();
        },
        Qt::QueuedConnection);
}
