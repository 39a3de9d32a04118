// A flat hash table: one array of slots, so that a look-up touches one slot and then the
// entry, and a store of many keys costs no allocation per key.
#include "config/key_index.hpp"

#include <functional>

namespace velmor2::_internal::key_index {
namespace {

constexpr std::size_t min_slots = 16;

void place(index_t& index, const slot_t& slot) {
    const std::size_t mask = index.size() - 1;
    std::size_t at = slot.first & mask;
    while (index[at].second != nullptr) {
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
    index_t resized(slots, slot_t{0, nullptr});
    for (const slot_t& slot : index) {
        if (slot.second != nullptr) {
            place(resized, slot);
        }
    }
    index.swap(resized);
}

} // namespace

std::size_t hash_of(std::wstring_view key) {
    return std::hash<std::wstring_view>()(key);
}

entry_t* find(const index_t& index, std::wstring_view key, std::size_t hash) {
    if (index.empty()) {
        return nullptr;
    }
    const std::size_t mask = index.size() - 1;
    for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
        const slot_t& slot = index[at];
        if (slot.second == nullptr) {
            return nullptr;
        }
        if (slot.first == hash && slot.second->first == key) {
            return slot.second;
        }
    }
}

void add(index_t& index, std::size_t count, std::size_t hash, entry_t* entry) {
    if (2 * (count + 1) > index.size()) {
        resize(index, count + 1);
    }
    place(index, slot_t{hash, entry});
}

index_t build(std::map<std::wstring, boost::any>& values) {
    index_t index;
    resize(index, values.size());
    for (entry_t& entry : values) {
        place(index, slot_t{hash_of(entry.first), &entry});
    }
    return index;
}

} // namespace velmor2::_internal::key_index
