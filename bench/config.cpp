// Saving and loading a configuration of typed keys beside boost::property_tree writing and
// reading the same content as XML, and beside libxml2's bare parse of our file.
//
// The workload: keys `groupG.subS.keyI`, 100 groups x 10 subs x N/1000 keys, made and read in
// that order. Every other value is an int below 10^9; the others are strings of 10 to 30
// characters, one in nine with non-ASCII letters (é, €) and one in nine a Windows path. The
// peer's file holds the same content without type attributes.
//
// What each row times, per iteration (set-up outside the loop is not timed):
//   velmor_save   a fresh store, set_value of every key, then save (which flushes the new file
//                 and its folder to the disk: the peer does not).
//   ptree_save    a fresh tree, put of every key, then write_xml.
//   velmor_load   a fresh store, load, then a typed get of every key.
//   ptree_load    read_xml into a fresh tree, then get<int> or get<std::string> of every key.
//   libxml2_parse xmlReadFile and xmlFreeDoc of our file: the floor under any load.
//   load_growth   velmor_load at three sizes ten apart, with the growth per key printed;
//                 ptree_load_growth the same for the peer: past the processor's caches both
//                 pay more per key, which is the memory's doing, not a growing algorithm.
// Compare CPU times: the wall time of a save includes the disk.
#include "growth.hpp"

#include <velmor2/configuration.hpp>

#include <benchmark/benchmark.h>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <libxml/parser.h>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace pt = boost::property_tree;

struct entry_t {
    std::wstring key;
    std::string narrow_key; // the peer's path, "root." and the key
    bool is_int;
    int number;
    std::wstring text;
    std::string utf8_text;
};

std::string utf8(const std::wstring& text) {
    std::string out;
    for (const wchar_t c : text) {
        const auto code = static_cast<unsigned>(c);
        if (code < 0x80) {
            out += static_cast<char>(code);
        } else if (code < 0x800) {
            out += static_cast<char>(0xC0 | code >> 6);
            out += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | code >> 12);
            out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return out;
}

std::wstring text_value(std::size_t n) {
    const std::size_t length = 10 + n * 7 % 21;
    std::wstring text;
    switch (n / 2 % 9) {
    case 0:
        text = L"Paramètre " + std::to_wstring(n) + L" à 5 €";
        break;
    case 1:
        text = L"C:\\Users\\user" + std::to_wstring(n % 100) + L"\\Documents\\f.txt";
        break;
    default:
        text = L"value " + std::to_wstring(n) + L" of the setting";
        break;
    }
    text.resize(length, L'x');
    return text;
}

std::vector<entry_t> make_entries(std::size_t count) {
    std::vector<entry_t> entries;
    entries.reserve(count);
    const std::size_t per_sub = count / 1000;
    for (std::size_t g = 0; g < 100; ++g) {
        for (std::size_t s = 0; s < 10; ++s) {
            for (std::size_t i = 0; i < per_sub; ++i) {
                const std::size_t n = entries.size();
                entry_t entry;
                entry.key = L"group" + std::to_wstring(g) + L".sub" + std::to_wstring(s) + L".key" +
                            std::to_wstring(i);
                entry.narrow_key = "root." + utf8(entry.key);
                entry.is_int = n % 2 == 0;
                entry.number = static_cast<int>(n * 104729 % 1000000000);
                entry.text = text_value(n);
                entry.utf8_text = utf8(entry.text);
                entries.push_back(std::move(entry));
            }
        }
    }
    return entries;
}

std::string file_name(const char* tag, std::size_t count) {
    return "/tmp/velmor_bench_config_" + std::to_string(::getpid()) + "_" + tag + "_" +
           std::to_string(count) + ".xml";
}

void fill(velmor2::advanced_xml_config_t& store, const std::vector<entry_t>& entries) {
    for (const entry_t& entry : entries) {
        if (entry.is_int) {
            store.set_value(entry.key, entry.number);
        } else {
            store.set_value(entry.key, entry.text);
        }
    }
}

pt::ptree make_tree(const std::vector<entry_t>& entries) {
    pt::ptree root;
    for (const entry_t& entry : entries) {
        if (entry.is_int) {
            root.put(entry.narrow_key, entry.number);
        } else {
            root.put(entry.narrow_key, entry.utf8_text);
        }
    }
    return root;
}

const auto ptree_settings = pt::xml_writer_make_settings<std::string>(' ', 2);

// A file written by the store, removed when the benchmark ends.
struct saved_file_t {
    std::string name;
    saved_file_t(const char* tag, const std::vector<entry_t>& entries)
        : name(file_name(tag, entries.size())) {
        velmor2::advanced_xml_config_t store;
        fill(store, entries);
        store.save(velmor2::make_path(name));
    }
    ~saved_file_t() { std::remove(name.c_str()); }
};

void load_and_read(const std::string& file, const std::vector<entry_t>& entries,
                   benchmark::State& state) {
    velmor2::advanced_xml_config_t store;
    if (!store.load(velmor2::make_path(file))) {
        state.SkipWithError("load failed");
    }
    for (const entry_t& entry : entries) {
        if (entry.is_int) {
            benchmark::DoNotOptimize(store.get_value(entry.key, 0));
        } else {
            benchmark::DoNotOptimize(store.get_value(entry.key, std::wstring()));
        }
    }
}

void read_ptree(const std::string& file, const std::vector<entry_t>& entries) {
    pt::ptree tree;
    pt::read_xml(file, tree, pt::xml_parser::trim_whitespace);
    for (const entry_t& entry : entries) {
        if (entry.is_int) {
            benchmark::DoNotOptimize(tree.get<int>(entry.narrow_key));
        } else {
            benchmark::DoNotOptimize(tree.get<std::string>(entry.narrow_key));
        }
    }
}

void velmor_save(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("velmor_save", entries.size());
    for (auto _ : state) {
        velmor2::advanced_xml_config_t store;
        fill(store, entries);
        if (!store.save(velmor2::make_path(file))) {
            state.SkipWithError("save failed");
        }
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void ptree_save(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("ptree_save", entries.size());
    for (auto _ : state) {
        pt::write_xml(file, make_tree(entries), std::locale(), ptree_settings);
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void velmor_load(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const saved_file_t file("velmor_load", entries);
    for (auto _ : state) {
        load_and_read(file.name, entries, state);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void ptree_load(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("ptree_load", entries.size());
    pt::write_xml(file, make_tree(entries), std::locale(), ptree_settings);
    for (auto _ : state) {
        read_ptree(file, entries);
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void libxml2_parse(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const saved_file_t file("libxml2_parse", entries);
    for (auto _ : state) {
        xmlFreeDoc(xmlReadFile(file.name.c_str(), nullptr, XML_PARSE_NONET));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void load_growth(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const saved_file_t file("load_growth", entries);
    velmor_bench::run_growth(state, "load", static_cast<double>(entries.size()),
                             [&] { load_and_read(file.name, entries, state); });
}

// The peer's growth on the same sizes, for what the memory hierarchy alone adds.
void ptree_load_growth(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("ptree_load_growth", entries.size());
    pt::write_xml(file, make_tree(entries), std::locale(), ptree_settings);
    velmor_bench::run_growth(state, "ptree_load", static_cast<double>(entries.size()),
                             [&] { read_ptree(file, entries); });
    std::remove(file.c_str());
}

} // namespace

BENCHMARK(velmor_save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(ptree_save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(velmor_load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(ptree_load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(libxml2_parse)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(load_growth)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(ptree_load_growth)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
