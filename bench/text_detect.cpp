// Encoding detection of valid UTF-8 files in the page cache, beside the sequence-by-sequence
// scan of the same bytes (read the same way) that it replaces.
#include "unicode/convert.hpp"

#include <velmor2/text_file.hpp>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

constexpr std::size_t big = 64 << 20;
constexpr std::size_t small = 64;

// Mostly ASCII (a few accented letters per line), or half of the bytes non-ASCII.
enum text_kind_t { mostly_ascii = 0, half_non_ascii = 1 };

std::string make_text(text_kind_t kind, std::size_t size) {
    const std::string line =
        kind == mostly_ascii
            ? "The quick brown fox jumps over the lazy dog, caf\xC3\xA9 na\xC3\xAFve.\n"
            : "ab \xC3\xA9\xC3\xA8 cd \xE2\x82\xAC x\xD0\x96\xD0\xB8 \xF0\x9F\x98\x80 ";
    std::string text;
    while (text.size() < size) {
        text += line;
    }
    // Cut back to a character boundary.
    text.resize(size);
    while ((static_cast<unsigned char>(text.back()) & 0xC0) == 0x80 ||
           static_cast<unsigned char>(text.back()) >= 0xC0) {
        text.back() = 'x';
    }
    return text;
}

struct sample_file_t {
    std::string name;
    sample_file_t(text_kind_t kind, std::size_t size) {
        name = (std::filesystem::temp_directory_path() /
                ("velmor-bench-detect-" + std::to_string(::getpid()) + "-" + std::to_string(kind) +
                 "-" + std::to_string(size)))
                   .string();
        const std::string text = make_text(kind, size);
        std::ofstream(name, std::ios::binary).write(text.data(), text.size());
    }
    ~sample_file_t() { std::remove(name.c_str()); }
};

const std::string& sample(text_kind_t kind, std::size_t size) {
    static sample_file_t files[2][2] = {{{mostly_ascii, big}, {mostly_ascii, small}},
                                        {{half_non_ascii, big}, {half_non_ascii, small}}};
    return files[kind][size == big ? 0 : 1].name;
}

void get_file_cp_velmor(benchmark::State& state) {
    const auto kind = static_cast<text_kind_t>(state.range(0));
    const std::size_t size = state.range(1);
    const velmor2::path_t file = velmor2::make_path(sample(kind, size));
    for (auto _ : state) {
        if (velmor2::get_file_cp(file) != velmor2::cp_utf8) {
            state.SkipWithError("not detected as UTF-8");
        }
    }
    state.SetBytesProcessed(state.iterations() * size);
}

// Reading the file whole and checking it one sequence after the other.
void get_file_cp_sequence_scan(benchmark::State& state) {
    const auto kind = static_cast<text_kind_t>(state.range(0));
    const std::size_t size = state.range(1);
    const std::string& name = sample(kind, size);
    for (auto _ : state) {
        std::ifstream in(name, std::ios::binary);
        in.seekg(0, std::ios::end);
        const auto length = static_cast<std::size_t>(in.tellg());
        in.seekg(0);
        const std::unique_ptr<char[]> bytes(new char[length]);
        in.read(bytes.get(), length);
        bool valid = true;
        for (std::size_t p = 0; p + 1 < length;) {
            if (!velmor2::_internal::validate_utf8(bytes.get() + p, length - p)) {
                valid = false;
                break;
            }
            p += velmor2::_internal::get_utf8_length(bytes.get() + p, length - p);
        }
        benchmark::DoNotOptimize(valid);
    }
    state.SetBytesProcessed(state.iterations() * size);
}

} // namespace

BENCHMARK(get_file_cp_velmor)
    ->Args({mostly_ascii, big})
    ->Args({half_non_ascii, big})
    ->Args({mostly_ascii, small})
    ->Args({half_non_ascii, small});
BENCHMARK(get_file_cp_sequence_scan)
    ->Args({mostly_ascii, big})
    ->Args({half_non_ascii, big})
    ->Args({mostly_ascii, small})
    ->Args({half_non_ascii, small});
