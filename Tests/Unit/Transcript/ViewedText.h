#pragma once

// A store of text with one view on all that it holds.

#include "Transcript/TextView.h"

struct ViewedTextStore {
    explicit ViewedTextStore(const TextStorage &storage) : store(storage) {}

    TextStore store;
};

class ViewedText : private ViewedTextStore, public TextView
{
public:
    explicit ViewedText(const TextStorage &storage = {}) : ViewedTextStore(storage), TextView(store) {}
    /// With so many blocks at the end that are not packed.
    explicit ViewedText(std::size_t plainBlocks) : ViewedText(storageWith(plainBlocks)) {}

    void append(QByteArrayView text, OutputKind kind = OutputKind::out) { store.append(text, kind); }
    void dropFront(Position newBegin)
    {
        moveBegin(newBegin);
        store.dropBefore(newBegin);
    }
    void clear() { dropFront(end()); }
    std::int64_t memory() const { return store.memory(); }
    BlockStore::Loss loss() const { return store.loss(); }

private:
    static TextStorage storageWith(std::size_t plainBlocks)
    {
        TextStorage storage;
        storage.plainBlocks = plainBlocks;
        return storage;
    }
};
