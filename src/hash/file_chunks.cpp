// Reading a whole file piece by piece for hashing; a small file without a heap buffer
// ("CRC-32 of a file" in docs/performance.md).
#include "hash/file_chunks.hpp"

#include "os/data_file.hpp"

#include <algorithm>
#include <memory>

namespace velmor2::_internal {
namespace {

// The chunk size is a reading granularity, not a result: a huge one is served by a buffer of
// reasonable size instead of exhausting memory.
constexpr std::size_t largest_buffer = 16 * 1024 * 1024;

} // namespace

chunks_end_t read_chunks(const path_t& file, std::size_t chunk_size,
                         const std::function<void(const std::uint8_t*, std::size_t)>& sink) {
    os::data_file_t stream;
    if (!stream.open_read(file.as_string())) {
        return chunks_end_t::not_opened;
    }
    // Most files hashed are small: the first piece goes through the stack, and a buffer of the
    // chunk size is made only for a file that goes on.
    std::uint8_t first[4096];
    std::size_t size = std::min(chunk_size, sizeof first);
    std::unique_ptr<std::uint8_t[]> buffer;
    std::uint8_t* piece = first;
    for (;;) {
        std::size_t got = 0;
        const bool read = stream.read(piece, size, got);
        if (got > 0) {
            sink(piece, got);
        }
        if (!read) {
            return chunks_end_t::failed;
        }
        if (got < size) {
            return chunks_end_t::complete;
        }
        if (!buffer) {
            size = std::min(chunk_size, largest_buffer);
            buffer.reset(new std::uint8_t[size]);
            piece = buffer.get();
        }
    }
}

} // namespace velmor2::_internal
