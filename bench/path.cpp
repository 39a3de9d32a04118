// Parsing, printing and comparing paths, beside std::filesystem and Boost.Filesystem on the
// same texts; paths kept by the hundred thousand; growth of assign(list) and match; everyday
// matches beside fnmatch. The peers do not read Windows forms on Linux, so they get each text
// with every `\` already turned into `/` (outside the timed loop) and have their components
// iterated, which is what a user of them pays to see the names.
#include "growth.hpp"

#include <velmor2/path.hpp>

#include <benchmark/benchmark.h>
#include <boost/filesystem/path.hpp>
#include <fnmatch.h>
#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <list>
#include <random>
#include <string>
#include <vector>

namespace {

// One text of each form; the drive path is the long one (56 characters and more).
const std::vector<std::wstring> texts = {
    L"C:\\Program Files\\Vendor\\Product\\bin\\plugins\\tool_x64.dll",
    L"\\\\fileserver\\share\\projects\\2024\\report.docx",
    L"/usr/local/share/doc/package/README.md",
    L"..\\src\\module\\detail\\impl.cpp",
    L"D:\\work\\checkouts\\library\\source\\paths\\grammar_implementation.cpp",
};

const char* const form_names[] = {"drive", "unc", "posix", "relative", "long"};

std::wstring with_slashes(std::wstring text) {
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

void set_label(benchmark::State& state) {
    const auto& text = texts[static_cast<std::size_t>(state.range(0))];
    state.SetLabel(std::string(form_names[state.range(0)]) + " (" + std::to_string(text.size()) +
                   " chars)");
}

void each_form(benchmark::internal::Benchmark* b) {
    b->DenseRange(0, 4);
}

void velmor_parse(benchmark::State& state) {
    const std::wstring& text = texts[static_cast<std::size_t>(state.range(0))];
    for (auto _ : state) {
        velmor2::path_t path(text);
        benchmark::DoNotOptimize(path);
    }
    set_label(state);
}
BENCHMARK(velmor_parse)->Apply(each_form);

// Paths that stay alive: the cost of a parse whose result is kept.
void velmor_parse_kept(benchmark::State& state) {
    const std::wstring& text = texts[static_cast<std::size_t>(state.range(0))];
    std::vector<velmor2::path_t> kept;
    kept.reserve(8192);
    for (auto _ : state) {
        kept.emplace_back(text);
        if (kept.size() == kept.capacity()) {
            state.PauseTiming();
            kept.clear();
            state.ResumeTiming();
        }
    }
    set_label(state);
}
BENCHMARK(velmor_parse_kept)->Apply(each_form);

void std_filesystem_parse(benchmark::State& state) {
    const std::wstring text = with_slashes(texts[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        std::filesystem::path path(text);
        for (const auto& component : path) {
            benchmark::DoNotOptimize(component);
        }
        benchmark::DoNotOptimize(path);
    }
    set_label(state);
}
BENCHMARK(std_filesystem_parse)->Apply(each_form);

void boost_filesystem_parse(benchmark::State& state) {
    const std::wstring text = with_slashes(texts[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        boost::filesystem::path path(text);
        for (const auto& component : path) {
            benchmark::DoNotOptimize(component);
        }
        benchmark::DoNotOptimize(path);
    }
    set_label(state);
}
BENCHMARK(boost_filesystem_parse)->Apply(each_form);

void velmor_print(benchmark::State& state) {
    const velmor2::path_t path(texts[static_cast<std::size_t>(state.range(0))]);
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.as_string());
    }
    set_label(state);
}
BENCHMARK(velmor_print)->Apply(each_form);

void std_filesystem_print(benchmark::State& state) {
    const std::filesystem::path path(with_slashes(texts[static_cast<std::size_t>(state.range(0))]));
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.wstring());
    }
    set_label(state);
}
BENCHMARK(std_filesystem_print)->Apply(each_form);

void boost_filesystem_print(benchmark::State& state) {
    const boost::filesystem::path path(
        with_slashes(texts[static_cast<std::size_t>(state.range(0))]));
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.wstring());
    }
    set_label(state);
}
BENCHMARK(boost_filesystem_print)->Apply(each_form);

// `==` and `<` on 45-character drive paths: equal but for case (the drive letter and names
// all through), and unequal in the last name only, so that both sides walk the whole path.
const std::wstring compare_base = L"C:\\Users\\Someone\\Projects\\Velmor\\src\\main.cpp";
const std::wstring compare_other[] = {
    L"c:\\users\\someone\\PROJECTS\\velmor\\SRC\\Main.cpp",
    L"C:\\Users\\Someone\\Projects\\Velmor\\src\\mail.cpp",
};

void set_compare_label(benchmark::State& state) {
    state.SetLabel(state.range(0) == 0 ? "equal but for case" : "unequal");
}

template <typename Path, typename Compare>
void compare_paths(benchmark::State& state, const Path& a, const Path& b, Compare compare) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(compare(a, b));
    }
    set_compare_label(state);
}

void velmor_equal(benchmark::State& state) {
    compare_paths(state, velmor2::path_t(compare_base),
                  velmor2::path_t(compare_other[state.range(0)]),
                  [](const auto& a, const auto& b) { return a == b; });
}
BENCHMARK(velmor_equal)->DenseRange(0, 1);

void std_filesystem_equal(benchmark::State& state) {
    compare_paths(state, std::filesystem::path(with_slashes(compare_base)),
                  std::filesystem::path(with_slashes(compare_other[state.range(0)])),
                  [](const auto& a, const auto& b) { return a == b; });
}
BENCHMARK(std_filesystem_equal)->DenseRange(0, 1);

void velmor_less(benchmark::State& state) {
    compare_paths(state, velmor2::path_t(compare_base),
                  velmor2::path_t(compare_other[state.range(0)]),
                  [](const auto& a, const auto& b) { return a < b; });
}
BENCHMARK(velmor_less)->DenseRange(0, 1);

void std_filesystem_less(benchmark::State& state) {
    compare_paths(state, std::filesystem::path(with_slashes(compare_base)),
                  std::filesystem::path(with_slashes(compare_other[state.range(0)])),
                  [](const auto& a, const auto& b) { return a < b; });
}
BENCHMARK(std_filesystem_less)->DenseRange(0, 1);

// 100,000 paths kept in a vector, as a directory search returns them: the files of a tree of
// 5,000 folders up to 6 deep, 30% of them `*.xml`. Each side gets the texts in its own
// character type. `bytes_per_path` counts the vector's slot and everything allocated for it.
constexpr std::size_t kept_count = 100000;

const std::vector<std::wstring>& kept_texts() {
    static const std::vector<std::wstring> texts = [] {
        std::mt19937 rng(7);
        std::vector<std::pair<std::wstring, int>> folders = {{L"/home/user/tree", 0}};
        while (folders.size() < 5000) {
            const auto& parent = folders[rng() % folders.size()];
            if (parent.second < 6) {
                folders.emplace_back(parent.first + L"/folder_" + std::to_wstring(rng() % 1000),
                                     parent.second + 1);
            }
        }
        std::vector<std::wstring> files;
        files.reserve(kept_count);
        for (std::size_t i = 0; i < kept_count; ++i) {
            files.push_back(folders[rng() % folders.size()].first + L"/file_" +
                            std::to_wstring(rng() % 100000) + (i % 10 < 3 ? L".xml" : L".txt"));
        }
        return files;
    }();
    return texts;
}

std::size_t heap_in_use() {
    return mallinfo2().uordblks;
}

// The allocator serves large blocks from its heap too and keeps what is freed instead of
// handing it back to the system, so that rows measure the work done, not the page faults of
// fresh memory (slow on virtual machines) that depend on which row ran before.
const int keep_freed_memory =
    mallopt(M_MMAP_THRESHOLD, 1 << 30) + mallopt(M_TRIM_THRESHOLD, 1 << 30);

template <typename Path, typename Text>
void keep_paths(benchmark::State& state, const std::vector<Text>& texts) {
    double bytes_per_path = 0;
    for (auto _ : state) {
        const std::size_t before = heap_in_use();
        std::vector<Path> kept;
        kept.reserve(texts.size());
        for (const Text& text : texts) {
            kept.emplace_back(text);
        }
        bytes_per_path = static_cast<double>(heap_in_use() - before) / texts.size();
        state.PauseTiming();
        kept = std::vector<Path>();
        state.ResumeTiming();
    }
    state.counters["bytes_per_path"] = bytes_per_path;
    state.SetItemsProcessed(state.iterations() * texts.size());
}

void velmor_kept_paths(benchmark::State& state) {
    keep_paths<velmor2::path_t>(state, kept_texts());
}
BENCHMARK(velmor_kept_paths)->Unit(benchmark::kMillisecond);

void std_filesystem_kept_paths(benchmark::State& state) {
    std::vector<std::string> narrow;
    for (const std::wstring& text : kept_texts()) {
        narrow.emplace_back(text.begin(), text.end());
    }
    keep_paths<std::filesystem::path>(state, narrow);
}
BENCHMARK(std_filesystem_kept_paths)->Unit(benchmark::kMillisecond);

// Growth of assign(list): a drive and N names.
void velmor_assign_list(benchmark::State& state) {
    std::list<std::wstring> parts = {L"C:"};
    for (std::int64_t i = 1; i < state.range(0); ++i) {
        parts.push_back(L"name" + std::to_wstring(i));
    }
    velmor2::path_t path;
    velmor_bench::run_growth(state, "assign_list", state.range(0),
                             [&] { benchmark::DoNotOptimize(path.assign(parts)); });
}
BENCHMARK(velmor_assign_list)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);

// Growth of match against N characters `a`: `*?` fifty times then `b` (which a backtracking
// matcher retries at every split), and `*`, `a?` 25 times, `b`, `*` (a middle piece that
// nearly matches everywhere).
void velmor_match(benchmark::State& state, const std::wstring& family,
                  const std::wstring& pattern) {
    const velmor2::path_t path(std::wstring(static_cast<std::size_t>(state.range(0)), L'a'));
    velmor_bench::run_growth(state, std::string(family.begin(), family.end()), state.range(0),
                             [&] { benchmark::DoNotOptimize(path.match(pattern)); });
}

std::wstring repeated(const std::wstring& piece, int times) {
    std::wstring out;
    for (int i = 0; i < times; ++i) {
        out += piece;
    }
    return out;
}

BENCHMARK_CAPTURE(velmor_match, stars, L"stars", repeated(L"*?", 50) + L"b")
    ->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(velmor_match, middle, L"middle", L"*" + repeated(L"a?", 25) + L"b*")
    ->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);

// An everyday match: a found file against `*.xml` and against a pattern with a folder
// wildcard, beside fnmatch (without FNM_PATHNAME, so that `*` spans separators as ours does)
// on the same text with `/`.
const std::wstring everyday_text = L"/home/user/tree/folder_12/folder_345/file_6789.xml";
const std::wstring everyday_patterns[] = {L"*.xml", L"\\home\\user\\*\\file_6?89.xml"};

void velmor_match_everyday(benchmark::State& state) {
    const velmor2::path_t path(everyday_text);
    const std::wstring& pattern = everyday_patterns[state.range(0)];
    for (auto _ : state) {
        benchmark::DoNotOptimize(path.match(pattern));
    }
}
BENCHMARK(velmor_match_everyday)->DenseRange(0, 1);

void fnmatch_everyday(benchmark::State& state) {
    const std::string text(everyday_text.begin(), everyday_text.end());
    const std::wstring wide = with_slashes(everyday_patterns[state.range(0)]);
    const std::string pattern(wide.begin(), wide.end());
    for (auto _ : state) {
        benchmark::DoNotOptimize(fnmatch(pattern.c_str(), text.c_str(), 0));
    }
}
BENCHMARK(fnmatch_everyday)->DenseRange(0, 1);

} // namespace
