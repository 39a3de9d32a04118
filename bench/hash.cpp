// MD5 beside OpenSSL's, CRC-32 beside zlib's and ISA-L's, on a 64 MiB buffer and on 64-byte
// messages; the CRC-32 of a file beside the floor of reading it with read(2) into the same
// chunk and running the fastest engine over each.
#include "hash/crc32.hpp"
#include "unicode/convert.hpp"

#include <velmor2/hash.hpp>

#include <benchmark/benchmark.h>
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/md5.h>
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <fcntl.h>
#include <unistd.h>
#if defined(VELMOR_HAVE_ISAL)
#include <isa-l/crc.h>
#endif

namespace {

constexpr std::size_t big = 64 << 20;
constexpr std::size_t small = 64;

const std::string& random_bytes(std::size_t size) {
    static std::string data = [] {
        std::string bytes(big, '\0');
        std::mt19937_64 rng(1);
        for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
            const auto word = rng();
            std::memcpy(&bytes[i], &word, 8);
        }
        return bytes;
    }();
    static std::string small_data = data.substr(0, small);
    return size == big ? data : small_data;
}

// Wide text of 32-bit or 16-bit characters whose UTF-16 form has `bytes` bytes, and that form.
struct wide_sample_t {
    std::wstring text;
    std::string utf16le;
};

const wide_sample_t& wide_sample(std::size_t bytes) {
    static auto make = [](std::size_t size) {
        wide_sample_t s;
        std::mt19937 rng(2);
        for (std::size_t i = 0; i < size / 2; ++i) {
            const auto c = static_cast<wchar_t>(0x20 + rng() % 0x3000);
            s.text += c;
            s.utf16le += static_cast<char>(c & 0xFF);
            s.utf16le += static_cast<char>(c >> 8);
        }
        return s;
    };
    static wide_sample_t big_sample = make(big), small_sample = make(small);
    return bytes == big ? big_sample : small_sample;
}

// A file in the page cache holding `size` random bytes; removed at exit.
const std::string& sample_file(std::size_t size) {
    struct file_t {
        std::string name;
        explicit file_t(std::size_t size) {
            name =
                (std::filesystem::temp_directory_path() /
                 ("velmor-bench-hash-" + std::to_string(::getpid()) + "-" + std::to_string(size)))
                    .string();
            std::ofstream(name, std::ios::binary).write(random_bytes(size).data(), size);
        }
        ~file_t() { std::remove(name.c_str()); }
    };
    static file_t big_file(big), small_file(small);
    return size == big ? big_file.name : small_file.name;
}

void md5_velmor(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    for (auto _ : state) {
        velmor2::md5_t md5;
        md5.update(data);
        benchmark::DoNotOptimize(md5.get_digest());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void md5_openssl(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    unsigned char digest[MD5_DIGEST_LENGTH];
    for (auto _ : state) {
        MD5(reinterpret_cast<const unsigned char*>(data.data()), data.size(), digest);
        benchmark::DoNotOptimize(digest);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void crc32_buffer_velmor(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(velmor2::_internal::crc32_update(
            0xFFFFFFFF, reinterpret_cast<const std::uint8_t*>(data.data()), data.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// Our own folding engine, which serves where ISA-L is not built in (the Windows build).
void crc32_buffer_velmor_folding(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(velmor2::_internal::crc32_update_pclmul(
            0xFFFFFFFF, reinterpret_cast<const std::uint8_t*>(data.data()), data.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void crc32_buffer_zlib(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            crc32_z(0, reinterpret_cast<const Bytef*>(data.data()), data.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

#if defined(VELMOR_HAVE_ISAL)
void crc32_buffer_isal(benchmark::State& state) {
    const std::string& data = random_bytes(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(crc32_gzip_refl(
            0, reinterpret_cast<const unsigned char*>(data.data()), data.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(crc32_buffer_isal)->Arg(big)->Arg(small);
#endif

void crc32_wide_velmor(benchmark::State& state) {
    const wide_sample_t& sample = wide_sample(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(velmor2::generate_hash(sample.text));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// zlib given the UTF-16LE bytes ready-made: the conversion the library does is not charged.
void crc32_wide_zlib(benchmark::State& state) {
    const wide_sample_t& sample = wide_sample(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(crc32_z(0, reinterpret_cast<const Bytef*>(sample.utf16le.data()),
                                         sample.utf16le.size()));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// zlib as a user would apply it to a wide string: converted to UTF-16 first.
void crc32_wide_zlib_converted(benchmark::State& state) {
    const wide_sample_t& sample = wide_sample(state.range(0));
    for (auto _ : state) {
        const std::u16string units = velmor2::_internal::to_utf16(sample.text);
        benchmark::DoNotOptimize(
            crc32_z(0, reinterpret_cast<const Bytef*>(units.data()), units.size() * 2));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

constexpr std::size_t chunk = 64 * 1024;

void crc32_file_velmor(benchmark::State& state) {
    const velmor2::path_t file = velmor2::make_path(sample_file(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(velmor2::generate_hash(file, chunk));
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

// The same reading, chunk by chunk, with zlib's crc32.
void crc32_file_zlib(benchmark::State& state) {
    const std::string& name = sample_file(state.range(0));
    const std::unique_ptr<char[]> buffer(new char[chunk]);
    for (auto _ : state) {
        std::FILE* f = std::fopen(name.c_str(), "rb");
        uLong crc = 0;
        std::size_t got;
        while ((got = std::fread(buffer.get(), 1, chunk, f)) > 0) {
            crc = crc32_z(crc, reinterpret_cast<const Bytef*>(buffer.get()), got);
        }
        std::fclose(f);
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

#if defined(VELMOR_HAVE_ISAL)
// The floor: open, read(2) chunk by chunk, ISA-L over each chunk.
void crc32_file_read_isal(benchmark::State& state) {
    const std::string& name = sample_file(state.range(0));
    const std::unique_ptr<unsigned char[]> buffer(new unsigned char[chunk]);
    for (auto _ : state) {
        const int fd = ::open(name.c_str(), O_RDONLY);
        std::uint32_t crc = 0;
        ssize_t got;
        while ((got = ::read(fd, buffer.get(), chunk)) > 0) {
            crc = crc32_gzip_refl(crc, buffer.get(), static_cast<std::uint64_t>(got));
        }
        ::close(fd);
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(crc32_file_read_isal)->Arg(big)->Arg(small);
#endif

} // namespace

BENCHMARK(md5_velmor)->Arg(big)->Arg(small);
BENCHMARK(md5_openssl)->Arg(big)->Arg(small);
BENCHMARK(crc32_buffer_velmor)->Arg(big)->Arg(small);
BENCHMARK(crc32_buffer_velmor_folding)->Arg(big)->Arg(small);
BENCHMARK(crc32_buffer_zlib)->Arg(big)->Arg(small);
BENCHMARK(crc32_wide_velmor)->Arg(big)->Arg(small);
BENCHMARK(crc32_wide_zlib)->Arg(big)->Arg(small);
BENCHMARK(crc32_wide_zlib_converted)->Arg(big)->Arg(small);
BENCHMARK(crc32_file_velmor)->Arg(big)->Arg(small);
BENCHMARK(crc32_file_zlib)->Arg(big)->Arg(small);
