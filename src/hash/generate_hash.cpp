// CRC-32 of wide strings, files and bytes in pieces.
#include <velmor2/hash.hpp>

#include "hash/crc32.hpp"
#include "hash/file_chunks.hpp"
#include "hash/utf16_bytes.hpp"

namespace velmor2 {

unsigned long generate_hash(const std::wstring& text) {
    std::uint32_t crc = 0xFFFFFFFF;
    _internal::for_each_utf16_piece(text, [&crc](const std::uint8_t* bytes, std::size_t size) {
        crc = _internal::crc32_update(crc, bytes, size);
    });
    return crc ^ 0xFFFFFFFF;
}

unsigned long generate_hash(const path_t& file, std::size_t chunk_size) {
    if (chunk_size == 0) {
        return 0;
    }
    std::uint32_t crc = 0xFFFFFFFF;
    // A read error ends the hash with the bytes read until then.
    const auto end = _internal::read_chunks(file, chunk_size,
                                            [&crc](const std::uint8_t* bytes, std::size_t size) {
                                                crc = _internal::crc32_update(crc, bytes, size);
                                            });
    return end == _internal::chunks_end_t::not_opened ? 0 : crc ^ 0xFFFFFFFF;
}

unsigned long update_hash(unsigned long crc, const void* data, std::size_t size) {
    return _internal::crc32_update(static_cast<std::uint32_t>(crc) ^ 0xFFFFFFFF,
                                   static_cast<const std::uint8_t*>(data), size) ^
           0xFFFFFFFF;
}

} // namespace velmor2
