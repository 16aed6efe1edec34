#include "Transcript/BlockSeal.h"

#include <sodium.h>
#include <zstd.h>

#include <array>
#include <cstring>
#include <new>

namespace
{

/// The quickest that also shortens text without repetitions (base64, say) by a quarter.
constexpr int level = 1;
/// Half of the time goes into finding shorter repetitions, which save a twentieth.
constexpr int shortestRepetition = 7;
constexpr qsizetype sealSize = crypto_aead_chacha20poly1305_ietf_ABYTES;

using Nonce = std::array<unsigned char, crypto_aead_chacha20poly1305_ietf_NPUBBYTES>;

Nonce nonceOf(std::int64_t number)
{
    Nonce nonce{};
    std::memcpy(nonce.data(), &number, sizeof number);
    return nonce;
}

unsigned char *asBytes(char *text)
{
    return reinterpret_cast<unsigned char *>(text);
}

const unsigned char *asBytes(const char *text)
{
    return reinterpret_cast<const unsigned char *>(text);
}

} // namespace

void BlockKey::Release::operator()(unsigned char *bytes) const
{
    sodium_free(bytes);
}

BlockKey::BlockKey()
{
    if (sodium_init() < 0)
        qFatal("The system gives no random numbers.");
    // Locked in memory where that is allowed, in no core file, and overwritten when released.
    m_bytes.reset(static_cast<unsigned char *>(sodium_malloc(crypto_aead_chacha20poly1305_ietf_KEYBYTES)));
    if (!m_bytes)
        throw std::bad_alloc();
    crypto_aead_chacha20poly1305_ietf_keygen(m_bytes.get());
}

void BlockPacker::Release::operator()(ZSTD_CCtx_s *context) const
{
    ZSTD_freeCCtx(context);
}

QByteArrayView BlockPacker::pack(std::int64_t number, QByteArrayView content)
{
    if (!m_compression) {
        m_compression.reset(ZSTD_createCCtx());
        if (!m_compression)
            throw std::bad_alloc();
        ZSTD_CCtx_setParameter(m_compression.get(), ZSTD_c_compressionLevel, level);
        ZSTD_CCtx_setParameter(m_compression.get(), ZSTD_c_minMatch, shortestRepetition);
    }
    const auto size = static_cast<std::size_t>(content.size());
    m_packed.resize(content.size() + sealSize);
    // What does not compress is sealed as it is, which its size tells.
    std::size_t packed = ZSTD_compress2(m_compression.get(), m_packed.data(), size - 1, content.data(), size);
    if (ZSTD_isError(packed) != 0) {
        std::memcpy(m_packed.data(), content.data(), size);
        packed = size;
    }
    unsigned char *const bytes = asBytes(m_packed.data());
    crypto_aead_chacha20poly1305_ietf_encrypt(bytes, nullptr, bytes, packed, nullptr, 0, nullptr,
                                              nonceOf(number).data(), m_key.bytes());
    return {m_packed.data(), static_cast<qsizetype>(packed) + sealSize};
}

bool unpackBlock(const BlockKey &key, std::int64_t number, QByteArrayView packed, char *content, std::int64_t size)
{
    if (packed.size() < sealSize)
        return false;
    QByteArray opened(packed.size() - sealSize, Qt::Uninitialized);
    if (crypto_aead_chacha20poly1305_ietf_decrypt(asBytes(opened.data()), nullptr, nullptr, asBytes(packed.data()),
                                                  static_cast<unsigned long long>(packed.size()), nullptr, 0,
                                                  nonceOf(number).data(), key.bytes()) != 0)
        return false;
    if (opened.size() == size) {
        std::memcpy(content, opened.constData(), static_cast<std::size_t>(size));
        return true;
    }
    const std::size_t unpacked = ZSTD_decompress(content, static_cast<std::size_t>(size), opened.constData(),
                                                 static_cast<std::size_t>(opened.size()));
    return unpacked == static_cast<std::size_t>(size);
}
