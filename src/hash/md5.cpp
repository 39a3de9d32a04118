// MD5 of strings and files over the running context of RFC 1321.
#include <velmor2/hash.hpp>

#include "hash/file_chunks.hpp"
#include "hash/md5_transform.hpp"
#include "hash/utf16_bytes.hpp"

#include <cstring>

namespace velmor2 {
namespace {

// RFC 1321 finalisation on a copy: the byte 0x80, zeros up to 56 bytes modulo 64, then the
// bit count, low word first, each word low byte first.
md5_digest_t finish(md5_t::context_t context) {
    const std::uint32_t low = context.count[0], high = context.count[1];
    std::size_t used = (low >> 3) & 63;
    context.buffer[used++] = 0x80;
    if (used > 56) {
        std::memset(context.buffer + used, 0, 64 - used);
        _internal::md5_transform(context.state, context.buffer, 1);
        used = 0;
    }
    std::memset(context.buffer + used, 0, 56 - used);
    for (int i = 0; i < 4; ++i) {
        context.buffer[56 + i] = static_cast<std::uint8_t>(low >> (8 * i));
        context.buffer[60 + i] = static_cast<std::uint8_t>(high >> (8 * i));
    }
    _internal::md5_transform(context.state, context.buffer, 1);
    md5_digest_t digest;
    for (int i = 0; i < 16; ++i) {
        digest.bytes[i] = static_cast<std::uint8_t>(context.state[i / 4] >> (8 * (i % 4)));
    }
    return digest;
}

} // namespace

bool md5_digest_t::operator==(const md5_digest_t& other) const {
    return std::memcmp(bytes, other.bytes, sizeof bytes) == 0;
}

bool md5_digest_t::operator!=(const md5_digest_t& other) const {
    return !(*this == other);
}

md5_t::md5_t() {
    reset();
}

void md5_t::reset() {
    context_.count[0] = context_.count[1] = 0;
    std::memset(context_.buffer, 0, sizeof context_.buffer);
    context_.state[0] = 0x67452301;
    context_.state[1] = 0xefcdab89;
    context_.state[2] = 0x98badcfe;
    context_.state[3] = 0x10325476;
}

void md5_t::update_from_bytes(context_t* context, const void* data, std::size_t size) {
    const auto* in = static_cast<const std::uint8_t*>(data);
    std::size_t used = (context->count[0] >> 3) & 63;
    const auto bits_low = static_cast<std::uint32_t>(size << 3);
    context->count[0] += bits_low;
    if (context->count[0] < bits_low) {
        ++context->count[1];
    }
    context->count[1] += static_cast<std::uint32_t>(static_cast<std::uint64_t>(size) >> 29);
    if (used > 0) {
        const std::size_t fill = std::min<std::size_t>(64 - used, size);
        std::memcpy(context->buffer + used, in, fill);
        used += fill;
        in += fill;
        size -= fill;
        if (used < 64) {
            return;
        }
        _internal::md5_transform(context->state, context->buffer, 1);
    }
    _internal::md5_transform(context->state, in, size / 64);
    if (size % 64 != 0) {
        std::memcpy(context->buffer, in + (size & ~std::size_t{63}), size % 64);
    }
}

void md5_t::update(const std::string& data) {
    update_from_bytes(&context_, data.data(), data.size());
}

void md5_t::update(const std::wstring& data) {
    _internal::for_each_utf16_piece(data, [this](const std::uint8_t* bytes, std::size_t size) {
        update_from_bytes(&context_, bytes, size);
    });
}

bool md5_t::update_from_file(const path_t& file, std::size_t chunk_size) {
    if (chunk_size == 0) {
        return false;
    }
    // A file that cannot be read to its end contributes nothing.
    context_t working = context_;
    const auto end = _internal::read_chunks(
        file, chunk_size, [&working](const std::uint8_t* bytes, std::size_t size) {
            update_from_bytes(&working, bytes, size);
        });
    if (end != _internal::chunks_end_t::complete) {
        return false;
    }
    context_ = working;
    return true;
}

md5_digest_t md5_t::get_digest() const {
    return finish(context_);
}

std::wstring md5_t::get_digest_base16() const {
    static const wchar_t digits[] = L"0123456789abcdef";
    const md5_digest_t digest = get_digest();
    std::wstring text;
    text.reserve(32);
    for (const std::uint8_t byte : digest.bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

} // namespace velmor2
