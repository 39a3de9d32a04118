// Reading a whole file piece by piece for hashing.
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
    const std::size_t size = std::min(chunk_size, largest_buffer);
    const std::unique_ptr<std::uint8_t[]> buffer(new std::uint8_t[size]);
    for (;;) {
        std::size_t got = 0;
        const bool read = stream.read(buffer.get(), size, got);
        if (got > 0) {
            sink(buffer.get(), got);
        }
        if (!read) {
            return chunks_end_t::failed;
        }
        if (got < size) {
            return chunks_end_t::complete;
        }
    }
}

} // namespace velmor2::_internal
