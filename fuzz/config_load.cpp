// Two modes, picked by the first byte.
//
// File mode: loads arbitrary bytes as a configuration file. When they load, saves the store and
// loads the result: the load must succeed and give every key except those the save reported
// and those written inside another key's value element (a prefix key), which the format leaves
// out.
//
// Round-trip mode: builds a store from the bytes (keys from a few pieces, values of every
// exact type with any characters), saves it and loads the file: the load must succeed and give
// those keys, each with a value equal to the one saved.
#include <velmor2/configuration.hpp>

#include "os/posix/fs_calls.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <map>
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

// The element path of a key: its pieces without empty ones, joined by ".".
std::wstring element_path(const std::wstring& key) {
    std::wstring path;
    for (std::size_t begin = 0; begin <= key.size();) {
        std::size_t end = key.find(L'.', begin);
        end = end == std::wstring::npos ? key.size() : end;
        if (end > begin) {
            path += (path.empty() ? L"" : L".") + key.substr(begin, end - begin);
        }
        begin = end + 1;
    }
    return path;
}

// Keys the reloaded store must hold, each with the key it was saved from: written ones, in
// key order, not addressing an element written already or one inside it.
std::map<std::wstring, std::wstring> expected_keys(const std::vector<std::wstring>& names,
                                                   const std::set<std::wstring>& reported) {
    std::map<std::wstring, std::wstring> expected;
    for (const std::wstring& name : names) {
        const std::wstring path = element_path(name);
        if (reported.count(name) != 0 || path.empty() || expected.count(path) != 0) {
            continue;
        }
        bool inside = false;
        for (std::size_t dot = path.find(L'.'); dot != std::wstring::npos && !inside;
             dot = path.find(L'.', dot + 1)) {
            inside = expected.count(path.substr(0, dot)) != 0;
        }
        if (!inside) {
            expected.emplace(path, name);
        }
    }
    return expected;
}

// The keys of `store`.
std::vector<std::wstring> keys_of(const velmor2::advanced_xml_config_t& store) {
    std::vector<std::wstring> names;
    store.get_names(names);
    return names;
}

using string_vector = std::vector<std::wstring>;
using string_map = std::map<std::wstring, std::wstring>;

// Reads the fuzzer's bytes as the parts of keys and values.
struct reader_t {
    const std::uint8_t* data;
    std::size_t left;

    unsigned byte() {
        if (left == 0) {
            return 0;
        }
        --left;
        return *data++;
    }
    // Up to seven characters, any 16-bit value, zero and lone surrogates included.
    std::wstring text() {
        std::wstring out(byte() % 8, L'\0');
        for (wchar_t& c : out) {
            c = static_cast<wchar_t>(byte() << 8 | byte());
        }
        return out;
    }
    std::wstring key() {
        static const wchar_t* const pieces[] = {L"a", L"B", L"item", L"x-1", L"", L"\u00e9", L"2"};
        std::wstring key = pieces[byte() % 7];
        for (unsigned more = byte() % 3; more > 0; --more) {
            key += L"." + std::wstring(pieces[byte() % 7]);
        }
        return key;
    }
    boost::any value() {
        switch (byte() % 8) {
        case 0:
            return static_cast<int>(byte() << 24 | byte() << 16 | byte() << 8 | byte());
        case 1:
            return (byte() & 1) != 0;
        case 2:
            // Six significant digits at most, so that the written form is exact.
            return static_cast<double>(static_cast<std::int16_t>(byte() << 8 | byte())) / 2;
        case 3:
            return string_vector{text(), text()};
        case 4:
            return std::list<std::wstring>{text()};
        case 5:
            return std::vector<int>{static_cast<int>(byte()) - 128, static_cast<int>(byte())};
        case 6:
            return string_map{{text(), text()}, {text(), text()}};
        default:
            return text();
        }
    }
};

template <typename... T> bool same_value(const boost::any& a, const boost::any& b) {
    return ((a.type() == typeid(T) && b.type() == typeid(T) &&
             boost::any_cast<T>(a) == boost::any_cast<T>(b)) ||
            ...);
}

void round_trip(const std::uint8_t* data, std::size_t size, const std::string& output) {
    store_t store;
    for (reader_t reader{data, size}; reader.left > 0;) {
        const std::wstring key = reader.key();
        store.set_value(key, reader.value());
    }
    store_t loaded;
    if (!store.save(velmor2::make_path(output)) || !loaded.load(velmor2::make_path(output))) {
        std::abort();
    }
    const auto expected = expected_keys(keys_of(store), store.reported);
    const std::vector<std::wstring> again = keys_of(loaded);
    if (again.size() != expected.size()) {
        std::abort();
    }
    for (const std::wstring& key : again) {
        const auto saved = expected.find(key);
        if (saved == expected.end() ||
            !same_value<int, bool, double, std::wstring, string_vector, std::list<std::wstring>,
                        std::vector<int>, string_map>(store.get_value(saved->second, 0),
                                                      loaded.get_value(key, 0))) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string input = temp_name(".in.xml");
    static const std::string output = temp_name(".out.xml");
    // Durability is not under test: flushing every save to the disk would only slow the runs.
    velmor2::_internal::os::fs_calls().fsync = [](int) { return 0; };
    if (size > 0 && (data[0] & 1) != 0) {
        round_trip(data + 1, size - 1, output);
        return 0;
    }
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
    if (!store.save(velmor2::make_path(output))) {
        // Only an empty document may write nothing; libxml2 always writes the declaration.
        std::abort();
    }
    store_t reloaded;
    if (!reloaded.load(velmor2::make_path(output))) {
        std::abort();
    }
    std::vector<std::wstring> expected;
    for (const auto& [path, name] : expected_keys(keys_of(store), store.reported)) {
        expected.push_back(path);
    }
    if (keys_of(reloaded) != expected) {
        std::abort();
    }
    return 0;
}
