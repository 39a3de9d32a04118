// Recursive search for *.xml over a tree of 100,000 files in 5,000 folders up to 6 deep, 30% of
// them `*.xml`, warm cache: find_files beside std::filesystem::recursive_directory_iterator with
// fnmatch on each name, and beside the floor, a plain readdir walk that trusts d_type.
//
// The tree is generated once under the temporary directory and reused by later runs.
#include <velmor2/file_system.hpp>

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t folder_count = 5000;
constexpr std::size_t file_count = 100000;
constexpr int deepest = 6;

const fs::path& tree() {
    static const fs::path root = [] {
        const fs::path dir = fs::temp_directory_path() / "velmor-bench-find-files-6-deep";
        const fs::path complete = dir / ".complete";
        if (!fs::exists(complete)) {
            fs::remove_all(dir);
            std::mt19937 rng(7);
            std::vector<std::pair<fs::path, int>> folders = {{dir / "tree", 0}};
            fs::create_directories(folders.front().first);
            while (folders.size() < folder_count) {
                const auto parent = folders[rng() % folders.size()];
                if (parent.second < deepest) {
                    const fs::path folder =
                        parent.first / ("folder_" + std::to_string(folders.size()));
                    fs::create_directory(folder);
                    folders.emplace_back(folder, parent.second + 1);
                }
            }
            for (std::size_t i = 0; i < file_count; ++i) {
                std::ofstream(folders[rng() % folders.size()].first /
                              ("file_" + std::to_string(i) + (i % 10 < 3 ? ".xml" : ".txt")))
                    << i;
            }
            std::ofstream(complete) << "done";
        }
        return dir / "tree";
    }();
    return root;
}

void velmor_find_files(benchmark::State& state) {
    const velmor2::path_t root(tree().wstring());
    std::size_t found = 0;
    for (auto _ : state) {
        const std::vector<velmor2::path_t> files = velmor2::find_files(root, L"*.xml", true);
        found = files.size();
        benchmark::DoNotOptimize(files.data());
    }
    state.counters["found"] = static_cast<double>(found);
}

void std_filesystem_fnmatch(benchmark::State& state) {
    const fs::path& root = tree();
    std::size_t found = 0;
    for (auto _ : state) {
        std::vector<fs::path> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
            if (!entry.is_directory() &&
                ::fnmatch("*.xml", entry.path().filename().c_str(), 0) == 0) {
                files.push_back(entry.path());
            }
        }
        found = files.size();
        benchmark::DoNotOptimize(files.data());
    }
    state.counters["found"] = static_cast<double>(found);
}

// What the system gives at the least: no identity checks, no conversions, no link handling.
void readdir_walk(const std::string& dir, std::vector<std::string>& files) {
    DIR* stream = ::opendir(dir.c_str());
    if (stream == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(stream)) {
        const char* name = entry->d_name;
        if (entry->d_type == DT_DIR) {
            if (name[0] != '.') {
                readdir_walk(dir + "/" + name, files);
            }
        } else if (::fnmatch("*.xml", name, 0) == 0) {
            files.push_back(dir + "/" + name);
        }
    }
    ::closedir(stream);
}

void readdir_floor(benchmark::State& state) {
    const std::string root = tree().string();
    std::size_t found = 0;
    for (auto _ : state) {
        std::vector<std::string> files;
        readdir_walk(root, files);
        found = files.size();
        benchmark::DoNotOptimize(files.data());
    }
    state.counters["found"] = static_cast<double>(found);
}

BENCHMARK(velmor_find_files)->Unit(benchmark::kMillisecond);
BENCHMARK(std_filesystem_fnmatch)->Unit(benchmark::kMillisecond);
BENCHMARK(readdir_floor)->Unit(benchmark::kMillisecond);

} // namespace
