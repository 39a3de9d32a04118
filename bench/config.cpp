// Saving and loading a configuration of typed keys (about 100 groups of nested keys, ints and
// strings) beside boost::property_tree writing and reading the same data as XML.
//
// What each row times, per iteration (set-up outside the loop is not timed):
//   velmor_save  store.save: builds the document from the store's values and writes the file.
//                The store is filled once beforehand, in the order the keys are made (not key
//                order), as a program fills its settings.
//   ptree_save   write_xml of a tree built once beforehand: for a property_tree user the tree
//                is the store, so building it is not part of a save. This is the stricter of
//                the two readings (counting the build would add to the peer's time only).
//   velmor_load  constructs a store, loads the file and reads every value back by its key,
//                in the order the keys were made; the store is destroyed at the end.
//   ptree_load   read_xml into a fresh tree, then get<int>/get<std::string> of every key by
//                its path, in the same order; the tree is destroyed at the end.
// Both sides write and read files of the same shape (two-space indentation, a type attribute
// per value) in /tmp. Compare CPU times: the wall time of a save includes the file system.
// At 100,000 keys neither side's data fits the processor's caches any more (about 35 MB of
// store entries, and a parsed document of about 60 MB while loading): reading the keys back in
// creation order lands on a cold entry each time, and freeing the document and the store's
// many small blocks walks cold memory, so both loads grow faster than the key count.
#include <velmor2/configuration.hpp>

#include <benchmark/benchmark.h>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace pt = boost::property_tree;

struct entry_t {
    std::string key;
    bool is_int;
    int number;
    std::string text;
};

// group<g>.section<s>.key<k>: 100 groups, 10 sections each, the rest keys; every other value
// is an int, the others strings.
std::vector<entry_t> make_entries(std::size_t count) {
    std::vector<entry_t> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        entry_t entry;
        entry.key = "group" + std::to_string(i % 100) + ".section" + std::to_string(i / 100 % 10) +
                    ".key" + std::to_string(i / 1000);
        entry.is_int = i % 2 == 0;
        entry.number = static_cast<int>(i * 7919 % 1000003);
        entry.text = "value " + std::to_string(i) + " of the setting";
        entries.push_back(entry);
    }
    return entries;
}

std::wstring wide(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

std::string file_name(const char* tag, std::size_t count) {
    return "/tmp/velmor_bench_config_" + std::to_string(::getpid()) + "_" + tag + "_" +
           std::to_string(count) + ".xml";
}

void fill(velmor2::advanced_xml_config_t& store, const std::vector<entry_t>& entries) {
    for (const entry_t& entry : entries) {
        if (entry.is_int) {
            store.set_value(wide(entry.key), entry.number);
        } else {
            store.set_value(wide(entry.key), wide(entry.text));
        }
    }
}

pt::ptree make_tree(const std::vector<entry_t>& entries) {
    pt::ptree root;
    for (const entry_t& entry : entries) {
        pt::ptree& node = entry.is_int ? root.put("root." + entry.key, entry.number)
                                       : root.put("root." + entry.key, entry.text);
        node.put("<xmlattr>.type", entry.is_int ? "int" : "string");
    }
    return root;
}

const auto ptree_settings = pt::xml_writer_make_settings<std::string>(' ', 2);

void velmor_save(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    velmor2::advanced_xml_config_t store;
    fill(store, entries);
    const std::string file = file_name("velmor_save", entries.size());
    for (auto _ : state) {
        if (!store.save(velmor2::make_path(file))) {
            state.SkipWithError("save failed");
        }
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void velmor_load(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("velmor_load", entries.size());
    {
        velmor2::advanced_xml_config_t store;
        fill(store, entries);
        store.save(velmor2::make_path(file));
    }
    std::vector<std::wstring> keys;
    for (const entry_t& entry : entries) {
        keys.push_back(wide(entry.key));
    }
    for (auto _ : state) {
        velmor2::advanced_xml_config_t store;
        if (!store.load(velmor2::make_path(file))) {
            state.SkipWithError("load failed");
        }
        // Read every value back, as a program does after loading.
        for (const std::wstring& key : keys) {
            benchmark::DoNotOptimize(store.get_value(key, boost::any()));
        }
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void ptree_save(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const pt::ptree tree = make_tree(entries);
    const std::string file = file_name("ptree_save", entries.size());
    for (auto _ : state) {
        pt::write_xml(file, tree, std::locale(), ptree_settings);
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void ptree_load(benchmark::State& state) {
    const auto entries = make_entries(static_cast<std::size_t>(state.range(0)));
    const std::string file = file_name("ptree_load", entries.size());
    pt::write_xml(file, make_tree(entries), std::locale(), ptree_settings);
    for (auto _ : state) {
        pt::ptree tree;
        pt::read_xml(file, tree, pt::xml_parser::trim_whitespace);
        for (const entry_t& entry : entries) {
            if (entry.is_int) {
                benchmark::DoNotOptimize(tree.get<int>("root." + entry.key));
            } else {
                benchmark::DoNotOptimize(tree.get<std::string>("root." + entry.key));
            }
        }
    }
    std::remove(file.c_str());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(velmor_save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(ptree_save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(velmor_load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(ptree_load)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
