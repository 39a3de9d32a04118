// MD5 digests of strings and files, and CRC-32 hashes.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor2 {

/// A 16-byte MD5 digest in output order (A, B, C, D, each low byte first).
struct VELMOR_API md5_digest_t {
    /// The digest bytes.
    std::uint8_t bytes[16];

    /// True when all 16 bytes are equal.
    bool operator==(const md5_digest_t& other) const;
    /// True when any byte differs.
    bool operator!=(const md5_digest_t& other) const;
};

/// Incremental MD5 (RFC 1321) of narrow strings, wide strings and files. Copies continue
/// independently from the same point; reading the digest does not end the computation:
///
///   (nothing)          => d41d8cd98f00b204e9800998ecf8427e
///   "abc"              => 900150983cd24fb0d6963f7d28e17f72
///   L"abc"             => the digest of the bytes 61 00 62 00 63 00
class VELMOR_API md5_t {
  public:
    /// The running state of RFC 1321.
    struct context_t {
        /// The chaining values A, B, C, D.
        std::uint32_t state[4];
        /// The number of bits hashed so far, low word first.
        std::uint32_t count[2];
        /// The partial block not yet transformed.
        std::uint8_t buffer[64];
    };

    /// A fresh computation: the digest of empty input.
    md5_t();

    /// Hashes the bytes of `data` (no terminator).
    void update(const std::string& data);
    /// Hashes the UTF-16 code units of `data`, two bytes each, low byte first, on every
    /// platform; characters above U+FFFF count as their surrogate pairs.
    void update(const std::wstring& data);
    /// Hashes the whole content of `file`, read `chunk_size` bytes at a time. False, leaving
    /// the state as it was, when the file cannot be opened or read to its end, or when
    /// `chunk_size` is 0 (then nothing is read).
    bool update_from_file(const path_t& file, std::size_t chunk_size = 65536);

    /// The digest of everything hashed so far.
    md5_digest_t get_digest() const;
    /// The digest as 32 lower-case hexadecimal digits.
    std::wstring get_digest_base16() const;

  private:
    void reset();
    static void update_from_bytes(context_t* context, const void* data, std::size_t size);

    context_t context_;
};

/// The CRC-32 (reflected polynomial 0x04C11DB7, as zlib and PNG use it) of the UTF-16 code
/// units of `text`, two bytes each, low byte first, on every platform:
///
///   L""   => 0
///   L"1"  => CRC-32 of the bytes 31 00 = 0x8784154D
VELMOR_API unsigned long generate_hash(const std::wstring& text);

/// The CRC-32 of the whole content of `file`, read `chunk_size` bytes at a time; 0 when the
/// file cannot be opened, when it is empty, and when `chunk_size` is 0 (then nothing is read).
/// A read error ends the hash where it happened.
VELMOR_API unsigned long generate_hash(const path_t& file, std::size_t chunk_size = 65536);

/// Continues the CRC-32 `crc` of the bytes before (0 when there were none) over the `size` bytes
/// at `data`, for bytes that arrive in pieces, from a pipe say:
///
///   update_hash(0, "123456789", 9)                      => 0xCBF43926
///   update_hash(update_hash(0, "1234", 4), "56789", 5)  => 0xCBF43926
VELMOR_API unsigned long update_hash(unsigned long crc, const void* data, std::size_t size);

} // namespace velmor2
