// Parsing, printing and comparing paths, beside std::filesystem and Boost.Filesystem on the
// same texts. The peers do not read Windows forms on Linux, so they get each text with every
// `\` already turned into `/` (outside the timed loop) and have their components iterated,
// which is what a user of them pays to see the names.
#include <velmor2/path.hpp>

#include <benchmark/benchmark.h>
#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <filesystem>
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

// Paths that stay alive, so that no recycled node is at hand: the cost of a cold parse.
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

// Two spellings of the same long path that differ in case in the last name only: equality
// walks every component, ordering compares the whole text.
const std::wstring compare_a = texts[4];
const std::wstring compare_b =
    L"D:\\work\\checkouts\\library\\source\\paths\\GRAMMAR_implementation.cpp";

void velmor_compare(benchmark::State& state) {
    const velmor2::path_t a(compare_a);
    const velmor2::path_t b(compare_b);
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
        benchmark::DoNotOptimize(a < b);
    }
}
BENCHMARK(velmor_compare);

void std_filesystem_compare(benchmark::State& state) {
    const std::filesystem::path a(with_slashes(compare_a));
    const std::filesystem::path b(with_slashes(compare_b));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
        benchmark::DoNotOptimize(a < b);
    }
}
BENCHMARK(std_filesystem_compare);

void boost_filesystem_compare(benchmark::State& state) {
    const boost::filesystem::path a(with_slashes(compare_a));
    const boost::filesystem::path b(with_slashes(compare_b));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
        benchmark::DoNotOptimize(a < b);
    }
}
BENCHMARK(boost_filesystem_compare);

} // namespace
