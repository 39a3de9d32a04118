// A whole file read or written front to back, opened without sharing restrictions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor2::_internal::os {

/// An open file handle, closed when the object goes away. Other processes may read and write
/// the file while it is open. Directories cannot be opened.
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

    /// The current size of the open file in bytes.
    bool size(std::uint64_t& bytes) const;
    /// Reads up to `size` bytes, fewer only at the end of the file; false on a read error.
    bool read(void* buffer, std::size_t size, std::size_t& got);
    /// Writes all `size` bytes; false on a write error.
    bool write(const void* data, std::size_t size);

  private:
    std::intptr_t handle_ = -1;
};

} // namespace velmor2::_internal::os
