// A flat hash table: one array of slots, so that a look-up touches one slot and then the
// entry, and a store of many keys costs no allocation per key. Figures: docs/performance.md,
// "Configuration store".
#include "config/key_index.hpp"
#include "unicode/convert.hpp"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace velmor2::_internal::key_index {
namespace {

constexpr std::size_t min_slots = 16;

void place(index_t& index, const slot_t& slot) {
    const std::size_t mask = index.size() - 1;
    std::size_t at = std::get<0>(slot) & mask;
    while (std::get<2>(index[at]) != nullptr) {
        at = (at + 1) & mask;
    }
    index[at] = slot;
}

// Rebuilds `index` with room for `count` entries at most half full.
void resize(index_t& index, std::size_t count) {
    std::size_t slots = min_slots;
    while (slots < 2 * count) {
        slots *= 2;
    }
    index_t resized(slots, slot_t{0, {}, nullptr});
    for (const slot_t& slot : index) {
        if (std::get<2>(slot) != nullptr) {
            place(resized, slot);
        }
    }
    index.swap(resized);
}

} // namespace

bool is_key_form(std::wstring_view name) {
    return std::all_of(name.begin(), name.end(), [](wchar_t c) {
        return static_cast<std::uint32_t>(c) < 0x80 && !(c >= L'A' && c <= L'Z');
    });
}

std::wstring key_of_name(std::wstring name) {
    return is_key_form(name) ? name : _internal::tolower(name);
}

std::size_t hash_of(std::wstring_view key) {
    return std::hash<std::wstring_view>()(key);
}

entry_t* find(const index_t& index, std::wstring_view key, std::size_t hash) {
    if (index.empty()) {
        return nullptr;
    }
    const std::size_t mask = index.size() - 1;
    for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
        const auto& [slot_hash, slot_key, entry] = index[at];
        if (entry == nullptr) {
            return nullptr;
        }
        if (slot_hash == hash && slot_key == key) {
            return entry;
        }
    }
}

void reserve(index_t& index, std::size_t count, std::size_t more) {
    if (2 * (count + more) > index.size()) {
        resize(index, count + more);
    }
}

void add(index_t& index, std::size_t count, std::size_t hash, entry_t* entry) {
    reserve(index, count, 1);
    place(index, slot_t{hash, entry->first, entry});
}

index_t build(std::map<std::wstring, boost::any>& values) {
    index_t index;
    resize(index, values.size());
    for (entry_t& entry : values) {
        place(index, slot_t{hash_of(entry.first), entry.first, &entry});
    }
    return index;
}

} // namespace velmor2::_internal::key_index
