// Encoding detection: the byte-order mark FF FE, otherwise UTF-8 unless a sequence that starts
// before the last byte is invalid, otherwise ANSI. The fast whole-buffer check settles valid
// text; the sequence-by-sequence scan runs only from where that check stops.
#include "text/detect.hpp"

#include "os/data_file.hpp"
#include "text/utf8_check.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <memory>

namespace velmor2::_internal {
namespace {

constexpr std::size_t default_chunk_size = 256 * 1024;

bool is_continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool starts_with_utf16_mark(const char* bytes, std::size_t size) {
    return size >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
           static_cast<unsigned char>(bytes[1]) == 0xFE;
}

// True when every sequence of the `count` bytes at `p` (which start at a sequence boundary)
// that begins before `stop` is valid UTF-8.
bool sequences_valid(const char* p, std::size_t count, std::size_t stop) {
    std::size_t i = valid_utf8_prefix(p, count);
    while (i < stop) {
        if (!validate_utf8(p + i, count - i)) {
            return false;
        }
        i += get_utf8_length(p + i, count - i);
    }
    return true;
}

} // namespace

code_page_t detect_file_code_page(const path_t& file, std::size_t chunk_size) {
    os::data_file_t stream;
    std::uint64_t size = 0;
    if (!stream.open_read(file.as_string()) || !stream.size(size)) {
        return cp_unknown;
    }
    if (size == 0) {
        return cp_ansi;
    }
    chunk_size = std::max<std::size_t>(chunk_size, 1);
    // Room for the up to three bytes of an unfinished sequence carried over from a chunk.
    const std::unique_ptr<char[]> buffer(new char[chunk_size + 3]);
    char* const p = buffer.get();
    std::size_t carried = 0;
    std::uint64_t remaining = size;
    bool first = true;
    for (;;) {
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(chunk_size, remaining));
        std::size_t got = 0;
        const bool read = stream.read(p + carried, want, got);
        const std::size_t count = carried + got;
        remaining -= got;
        if (first) {
            first = false;
            if (starts_with_utf16_mark(p, count)) {
                return cp_utf16;
            }
        }
        if (!read || got < want) {
            // The file ended early (it shrank, or a read failed): the bytes never read count
            // as zeros, which are valid, so everything read must be whole sequences.
            return sequences_valid(p, count, count) ? cp_utf8 : cp_ansi;
        }
        if (remaining == 0) {
            return sequences_valid(p, count, count - 1) ? cp_utf8 : cp_ansi;
        }
        // A sequence that starts in the last three bytes may go on in the next chunk.
        std::size_t cut = count;
        for (std::size_t back = 1; back <= 3 && back <= count; ++back) {
            if (!is_continuation(p[count - back])) {
                cut = count - back;
                break;
            }
        }
        if (!sequences_valid(p, cut, cut)) {
            return cp_ansi;
        }
        std::copy(p + cut, p + count, p);
        carried = count - cut;
    }
}

} // namespace velmor2::_internal

namespace velmor2 {

code_page_t get_file_cp(const path_t& file) {
    return _internal::detect_file_code_page(file, _internal::default_chunk_size);
}

code_page_t get_bytes_cp(const char* bytes, std::size_t size) {
    if (size == 0) {
        return cp_ansi;
    }
    if (_internal::starts_with_utf16_mark(bytes, size)) {
        return cp_utf16;
    }
    // The scan stops one byte short: a lone last byte is never examined.
    return _internal::sequences_valid(bytes, size, size - 1) ? cp_utf8 : cp_ansi;
}

} // namespace velmor2
