// A whole file read or written front to back, opened without sharing restrictions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor2::_internal::os {

/// An open regular file, closed when the object goes away. Other processes may read and write
/// the file while it is open. Anything else (a directory, FIFO, device) is refused at once,
/// without waiting for a writer.
class data_file_t {
  public:
    data_file_t() = default;
    data_file_t(const data_file_t&) = delete;
    data_file_t& operator=(const data_file_t&) = delete;
    ~data_file_t();

    /// Opens the file of the printed path text for reading; false when it cannot be opened.
    bool open_read(const std::wstring& printed);
    /// Creates or truncates the file of the printed path text for writing.
    bool open_write(const std::wstring& printed);

    /// The current size of the open file in bytes. A file the system reports empty is read to
    /// its end to be sure (files under /proc have content and size 0); `read` then gives those
    /// bytes.
    bool size(std::uint64_t& bytes);
    /// Reads up to `size` bytes, fewer only at the end of the file; false on a read error.
    bool read(void* buffer, std::size_t size, std::size_t& got);
    /// Writes all `size` bytes; false on a write error.
    bool write(const void* data, std::size_t size);

  private:
    std::intptr_t handle_ = -1;
    std::string read_ahead_;
    std::size_t served_ = 0;
    /// Bytes taken from the file so far, and its size when opened (0: not known).
    std::uint64_t position_ = 0;
    std::uint64_t size_at_open_ = 0;
};

} // namespace velmor2::_internal::os
