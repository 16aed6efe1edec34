#pragma once

// Packs blocks of text: compressed and then sealed, so that nothing of them can be read, or altered unnoticed, without
// the key, which is in this process's memory and nowhere else.

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <memory>

struct ZSTD_CCtx_s;

/// The key of all blocks of one store, made anew for each. Any thread.
class BlockKey
{
public:
    BlockKey();

    const unsigned char *bytes() const { return m_bytes.get(); }

private:
    struct Release {
        void operator()(unsigned char *bytes) const;
    };
    std::unique_ptr<unsigned char, Release> m_bytes;
};

/// Packs one block after another. One thread at a time.
class BlockPacker
{
public:
    /// `key` must outlive the packer.
    explicit BlockPacker(const BlockKey &key) : m_key(key) {}

    /// The block packed; valid until the next is. `number` is not used twice with one key. Throws std::bad_alloc when
    /// there is no memory.
    QByteArrayView pack(std::int64_t number, QByteArrayView content);

private:
    struct Release {
        void operator()(ZSTD_CCtx_s *context) const;
    };

    const BlockKey &m_key;
    std::unique_ptr<ZSTD_CCtx_s, Release> m_compression;
    QByteArray m_packed;
};

/// Writes the content of a packed block, which is `size` bytes, to `content`; false when it is not what was packed
/// under this number with this key. Any thread.
bool unpackBlock(const BlockKey &key, std::int64_t number, QByteArrayView packed, char *content, std::int64_t size);
