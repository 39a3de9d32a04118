// Loads arbitrary bytes as a configuration file. When they load, saves the store and loads the
// result: the load must succeed and give every key except those the save reported and those
// written inside another key's value element (a prefix key), which the format leaves out.
#include <velmor2/configuration.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

struct store_t : velmor2::advanced_xml_config_t {
    std::set<std::wstring> reported;

  protected:
    void on_save_value_failed(const std::wstring& name, const std::type_info&) override {
        reported.insert(name);
    }
};

std::string temp_name(const char* suffix) {
    return "/tmp/velmor_fuzz_config_" + std::to_string(::getpid()) + suffix;
}

// Keys the reloaded store must hold: written ones not inside an earlier written key.
std::vector<std::wstring> expected_keys(const std::vector<std::wstring>& names,
                                        const std::set<std::wstring>& reported) {
    std::vector<std::wstring> expected;
    std::set<std::wstring> written;
    for (const std::wstring& name : names) {
        if (reported.count(name) != 0) {
            continue;
        }
        bool inside = false;
        for (std::size_t dot = name.find(L'.'); dot != std::wstring::npos && !inside;
             dot = name.find(L'.', dot + 1)) {
            inside = written.count(name.substr(0, dot)) != 0;
        }
        if (!inside) {
            written.insert(name);
            expected.push_back(name);
        }
    }
    return expected;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string input = temp_name(".in.xml");
    static const std::string output = temp_name(".out.xml");
    if (std::FILE* file = std::fopen(input.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    } else {
        return 0;
    }
    store_t store;
    if (!store.load(velmor2::make_path(input))) {
        return 0;
    }
    std::vector<std::wstring> names;
    store.get_names(names);
    if (!store.save(velmor2::make_path(output))) {
        // Only an empty document may write nothing; libxml2 always writes the declaration.
        std::abort();
    }
    store_t reloaded;
    if (!reloaded.load(velmor2::make_path(output))) {
        std::abort();
    }
    std::vector<std::wstring> again;
    reloaded.get_names(again);
    if (again != expected_keys(names, store.reported)) {
        std::abort();
    }
    return 0;
}
