#include "Transcript/BlockStore.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

namespace
{

/// So many blocks more may wait to be packed before their writer packs one itself.
constexpr std::size_t patientBlocks = 32;

} // namespace

std::shared_ptr<BlockStore> BlockStore::make(const TextStorage &storage, std::function<void()> onLoss)
{
    return std::shared_ptr<BlockStore>(new BlockStore(storage, std::move(onLoss)));
}

BlockStore::BlockStore(const TextStorage &storage, std::function<void()> onLoss)
    : m_storage(storage),
      m_onLoss(std::move(onLoss))
{
}

std::shared_ptr<TextBlock> BlockStore::startBlock(const TextCount &before, QByteArrayView moved)
{
    std::shared_ptr<TextBlock> block = m_pool->take();
    block->beginWith(moved); // before another thread can find it
    Lock lock(m_lock);
    m_entries.append({.before = before});
    m_plain.push_back(block);
    const bool isDue = isPackingDue(0);
    if (isPackingDue(patientBlocks))
        packOne(lock, m_ownPacker);
    if (isDue) // or was: a slab could not be filed before its last block was there
        wake(lock);
    return block;
}

/// The last block is never packed.
bool BlockStore::isPackingDue(std::size_t patience) const
{
    const auto waiting = static_cast<std::size_t>(m_first + m_entries.size() - m_nextToPack);
    return waiting > std::max<std::size_t>(1, m_storage.plainBlocks) + patience;
}

void BlockStore::dropFront(Number first)
{
    Lock lock(m_lock);
    m_wanted = std::max(m_wanted, first);
    release(m_unused);
    const Number kept = m_pins.empty() ? m_wanted : std::min(m_wanted, *m_pins.begin());
    if (kept > m_first) {
        m_entries.dropFront(kept - m_first);
        m_first = kept;
    }
    if (!m_unused.empty())
        wake(lock);
}

/// Lets go of the bytes that nobody needs any more.
void BlockStore::release(PackedBlocks::Unused &unused)
{
    const Number first = m_pins.empty() ? m_wanted : std::min(m_wanted, *m_pins.begin());
    while (!m_plain.empty() && (m_firstPlain < first || !m_plain.front())) {
        if (m_plain.front())
            unused.push_back(std::move(m_plain.front()));
        m_plain.pop_front();
        ++m_firstPlain;
    }
    m_nextToPack = std::max(m_nextToPack, m_firstPlain);
    m_packed.dropFront(first, unused);
}

void BlockStore::stop()
{
    const std::lock_guard guard(m_lock);
    m_isStopped = true;
    m_onLoss = nullptr;
    m_wake.notify_one();
}

std::int64_t BlockStore::memory() const
{
    const std::lock_guard guard(m_lock);
    const auto plain = std::ranges::count_if(m_plain, [](const auto &block) { return block != nullptr; });
    return m_entries.memory() + m_packed.memory() + plain * TextBlock::capacity;
}

BlockStore::BlockPointer BlockStore::read(Number number) const
{
    Lock lock(m_lock);
    const Source found = source(number);
    lock.unlock();
    return load(found);
}

BlockStore::Found BlockStore::readAt(std::int64_t position, std::int64_t end) const
{
    Lock lock(m_lock);
    const Number number = numberAt(position);
    const Source found = source(number);
    const std::int64_t begin = entry(number).before.bytes;
    const bool isLast = number + 1 == m_first + m_entries.size();
    if (!isLast)
        end = std::min(end, entry(number + 1).before.bytes);
    lock.unlock();
    return {load(found), begin, end};
}

BlockStore::Source BlockStore::source(Number number) const
{
    if (number >= m_firstPlain) {
        if (const BlockPointer &plain = m_plain[static_cast<std::size_t>(number - m_firstPlain)])
            return {.number = number, .plain = plain, .packed = {}};
    }
    const Entry &wanted = entry(number);
    return {.number = number,
            .plain = nullptr,
            .packed = wanted.place < 0 ? PackedBlocks::Location() : m_packed.find(wanted.place),
            .packedSize = wanted.packedSize,
            .contentSize = wanted.contentSize,
            .textSize = textSize(number)};
}

BlockStore::BlockPointer BlockStore::load(const Source &source) const
{
    if (source.plain)
        return source.plain;
    QByteArray filed;
    QByteArrayView packed;
    if (source.packed.memory) {
        packed = {source.packed.memory->data() + source.packed.offset, source.packedSize};
    } else if (source.packed.file) {
        filed.resize(source.packedSize);
        if (source.packed.file->read(source.packed.offset, filed.data(), static_cast<std::size_t>(filed.size())))
            packed = filed;
    }
    const std::shared_ptr<TextBlock> block = m_pool->take();
    if (unpackBlock(m_key, source.number, packed, block->memory.data(), source.contentSize))
        block->readContent(static_cast<std::int32_t>(source.textSize), source.contentSize);
    else
        block->becomeMissing(source.textSize);
    return block;
}

BlockStore::Number BlockStore::blockAt(std::int64_t position) const
{
    const std::lock_guard guard(m_lock);
    return numberAt(position);
}

BlockStore::Number BlockStore::numberAt(std::int64_t position) const
{
    std::int64_t begin = 0;
    std::int64_t end = m_entries.size();
    while (end - begin > 1) {
        const std::int64_t middle = begin + (end - begin) / 2;
        (m_entries[middle].before.bytes <= position ? begin : end) = middle;
    }
    return m_first + begin;
}

void BlockStore::pin(Number number)
{
    const std::lock_guard guard(m_lock);
    m_pins.insert(number);
}

void BlockStore::unpin(Number number)
{
    Lock lock(m_lock);
    m_pins.erase(m_pins.find(number));
    release(m_unused);
    if (!m_unused.empty())
        wake(lock);
}

void BlockStore::wake(Lock &lock)
{
    if (m_isStopped)
        return;
    if (m_isWorking) {
        m_wake.notify_one();
        return;
    }
    try {
        // It ends with the store, and is waited for by nobody: the disk may keep it busy.
        std::thread([self = shared_from_this()] { self->work(); }).detach();
        m_isWorking = true;
    } catch (const std::system_error &) {
        // No thread is to be had now: memory is given back here, and who adds blocks packs them.
        PackedBlocks::Unused unused = std::exchange(m_unused, {});
        lock.unlock();
        unused.clear();
        lock.lock();
    }
}

void BlockStore::work()
{
    BlockPacker packer(m_key);
    Lock lock(m_lock);
    while (!m_isStopped) {
        if (giveBack(lock) || fileOne(lock))
            continue;
        if (isPackingDue(0))
            packOne(lock, packer);
        else
            m_wake.wait(lock);
    }
}

/// Packs the oldest block that nobody packs yet.
void BlockStore::packOne(Lock &lock, BlockPacker &packer)
{
    const Number number = m_nextToPack++;
    const std::shared_ptr<TextBlock> block = m_plain[static_cast<std::size_t>(number - m_firstPlain)];
    lock.unlock();
    const QByteArray content = block->content();
    const QByteArrayView packed = packer.pack(number, content);
    lock.lock();
    if (number < m_firstPlain)
        return; // forgotten meanwhile
    const PackedBlocks::Room room = m_packed.makeRoom(packed.size(), number);
    entry(number).place = room.place; // already now: the slab may be let go before it is filled
    entry(number).packedSize = static_cast<std::int32_t>(packed.size());
    entry(number).contentSize = static_cast<std::int32_t>(content.size());
    // Without the lock, which the window may wait for: the pages are touched for the first time.
    lock.unlock();
    std::copy(packed.begin(), packed.end(), room.memory->data() + room.offset);
    lock.lock();
    m_packed.fill(room);
    if (number < m_firstPlain)
        return;
    m_plain[static_cast<std::size_t>(number - m_firstPlain)].reset();
    release(m_unused);
    if (m_packed.memory() > m_storage.packedBytes + m_storage.waitingBytes) {
        const PackedBlocks::Numbers lost = m_packed.letGoWaiting(m_unused);
        if (lost.begin < lost.end) {
            for (Number each = std::max({lost.begin, m_first, m_wanted}); each < lost.end; ++each)
                m_loss.inside += lost.areAt(entry(each).place) ? textSize(each) : 0;
            m_loss.cause = m_loss.cause == Cause::none ? Cause::diskIsSlow : m_loss.cause;
            if (m_onLoss)
                m_onLoss();
        }
    }
}

/// Writes the oldest slab in memory to the file when there are too many.
bool BlockStore::fileOne(Lock &lock)
{
    if (m_packed.memory() <= m_storage.packedBytes)
        return false;
    std::optional<PackedBlocks::Filing> filing = m_packed.startFiling();
    if (!filing)
        return false;
    lock.unlock();
    int error = 0;
    if (!filing->file) {
        const std::shared_ptr<const NamelessFile> file = NamelessFile::open(m_storage.folder);
        error = file ? 0 : errno;
        filing->file = file;
    }
    const std::int64_t place = filing->slot * PackedBlocks::slabSize;
    if (error == 0 && filing->grows &&
        !filing->file->mayGrow(place + PackedBlocks::slabSize, m_storage.diskReserve, m_storage.diskReserveShare))
        error = ENOSPC;
    if (error == 0)
        error = filing->file->write(place, {filing->memory->data(), filing->size});
    lock.lock();
    m_packed.filed(*filing, error == 0, m_unused);
    if (error != 0) {
        m_loss.front = std::max(m_loss.front, m_packed.letGoOldest(m_unused).end);
        m_loss.cause = NamelessFile::isOutOfRoom(error) ? Cause::diskIsFull : Cause::noFile;
        if (m_onLoss)
            m_onLoss();
    }
    return true;
}

bool BlockStore::giveBack(Lock &lock)
{
    if (m_unused.empty())
        return false;
    PackedBlocks::Unused unused = std::exchange(m_unused, {});
    lock.unlock();
    const bool isMany = unused.size() > TextBlock::mostFree;
    PackedBlocks::giveBack(std::move(unused));
    if (isMany) {
        m_pool->clear();
        m_packed.giveBackKept();
    }
    lock.lock();
    return true;
}
