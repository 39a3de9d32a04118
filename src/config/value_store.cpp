// The flat value store.
#include "config/value_store.hpp"
#include "config/key_hash.hpp"

#include <boost/iterator/counting_iterator.hpp>

#include <algorithm>
#include <new>

namespace velmor2::_internal {
namespace {

constexpr std::size_t min_slots = 16;
constexpr std::uint64_t id_mask = 0xFFFFFFFFu;

std::uint64_t hash_of(std::wstring_view key) {
    return hash_key(key).hash;
}

} // namespace

value_store_t::value_store_t(const value_store_t& other) {
    for (std::size_t id = 0; id < other.count; ++id) {
        append(other.key(id), boost::any(other.value(id)));
    }
    in_key_order = other.in_key_order;
    slots = other.slots;
}

value_store_t& value_store_t::operator=(const value_store_t& other) {
    if (this != &other) {
        *this = value_store_t(other);
    }
    return *this;
}

std::size_t value_store_t::find(std::wstring_view key) const {
    return find(key, slots.empty() ? 0 : hash_of(key));
}

std::size_t value_store_t::find(std::wstring_view key, std::uint64_t hash) const {
    if (!slots.empty()) {
        return find_indexed(key, hash);
    }
    if (in_key_order) {
        const std::size_t low = *std::lower_bound(
            boost::counting_iterator<std::size_t>(0), boost::counting_iterator<std::size_t>(count),
            key,
            [this](std::size_t id, std::wstring_view sought) { return this->key(id) < sought; });
        return low < count && this->key(low) == key ? low : none;
    }
    for (std::size_t id = 0; id < count; ++id) {
        if (this->key(id) == key) {
            return id;
        }
    }
    return none;
}

std::size_t value_store_t::find_indexed(std::wstring_view key, std::uint64_t hash) const {
    const std::size_t mask = slots.size() - 1;
    for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask) {
        const std::uint64_t slot = slots[at];
        if (slot == 0) {
            return none;
        }
        const std::size_t id = static_cast<std::size_t>(slot & id_mask) - 1;
        if ((slot >> 32) == (hash >> 32) && this->key(id) == key) {
            return id;
        }
    }
}

std::size_t value_store_t::put(std::wstring_view key, boost::any&& value, boost::any& previous) {
    previous = boost::any();
    const bool after_last = count == 0 || this->key(count - 1) < key;
    // While the keys are in order, the last is the greatest.
    if (in_key_order && after_last) {
        add(key, std::move(value), true, slots.empty() ? 0 : hash_of(key));
        return count - 1;
    }
    index();
    const std::uint64_t hash = hash_of(key);
    const std::size_t id = find_indexed(key, hash);
    if (id != none) {
        previous.swap(entry(id).value);
        entry(id).value = std::move(value);
        return id;
    }
    add(key, std::move(value), after_last, hash);
    return count - 1;
}

void value_store_t::append(std::wstring_view key, boost::any&& value) {
    add(key, std::move(value), count == 0 || this->key(count - 1) < key,
        slots.empty() ? 0 : hash_of(key));
}

void value_store_t::add(std::wstring_view key, boost::any&& value, bool after_last,
                        std::uint64_t hash) {
    // Entry numbers share a slot with a 32-bit hash.
    if (count >= id_mask - 1) {
        throw std::bad_alloc();
    }
    // Room first, so that running out of memory leaves the store as it was.
    if (!slots.empty() && 2 * (count + 1) > slots.size()) {
        resize_index(count + 1);
    }
    if (count == entry_blocks.size() * entry_block_size) {
        entry_blocks.push_back(std::make_unique<entry_t[]>(entry_block_size));
    }
    wchar_t* text = key_room;
    if (key.size() > last_key_block / 4) {
        // A long key gets a block of its own; the room of the last block stays.
        key_blocks.push_back(std::make_unique<wchar_t[]>(key.size()));
        text = key_blocks.back().get();
    } else {
        if (key.size() > key_room_size) {
            const std::size_t size = std::max(
                key.size(), std::clamp(2 * key_block_size, first_key_block, last_key_block));
            key_blocks.push_back(std::make_unique<wchar_t[]>(size));
            key_room = key_blocks.back().get();
            key_room_size = key_block_size = size;
        }
        text = key_room;
        key_room += key.size();
        key_room_size -= key.size();
    }
    std::copy(key.begin(), key.end(), text);
    entry_t& added = entry(count);
    added.key = text;
    added.key_size = key.size();
    added.value = std::move(value);
    ++count;
    if (!slots.empty()) {
        place(hash, count - 1);
    }
    in_key_order = in_key_order && after_last;
}

void value_store_t::index() {
    if (slots.empty() && count != 0) {
        resize_index(count);
    }
}

void value_store_t::place(std::uint64_t hash, std::size_t id) {
    const std::size_t mask = slots.size() - 1;
    std::size_t at = static_cast<std::size_t>(hash) & mask;
    while (slots[at] != 0) {
        at = (at + 1) & mask;
    }
    slots[at] = (hash & ~id_mask) | (static_cast<std::uint64_t>(id) + 1);
}

void value_store_t::resize_index(std::size_t entries) {
    std::size_t size = min_slots;
    while (size < 2 * entries) {
        size *= 2;
    }
    std::vector<std::uint64_t> resized(size, 0);
    slots.swap(resized);
    for (std::size_t id = 0; id < count; ++id) {
        place(hash_of(key(id)), id);
    }
}

std::vector<std::size_t> value_store_t::sorted_ids() const {
    // Sorted by the keys' text itself, not through the entries' blocks.
    struct sorted_t {
        std::wstring_view key;
        std::size_t id;
    };
    std::vector<sorted_t> sorted(count);
    for (std::size_t id = 0; id < count; ++id) {
        sorted[id] = {key(id), id};
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const sorted_t& a, const sorted_t& b) { return a.key < b.key; });
    std::vector<std::size_t> ids(count);
    std::transform(sorted.begin(), sorted.end(), ids.begin(),
                   [](const sorted_t& one) { return one.id; });
    return ids;
}

void value_store_t::remove(const std::vector<std::size_t>& ids) {
    std::vector<bool> removed(count, false);
    for (const std::size_t id : ids) {
        removed[id] = true;
    }
    // Copied, not moved: running out of memory leaves the store as it was.
    value_store_t kept;
    for (std::size_t id = 0; id < count; ++id) {
        if (!removed[id]) {
            kept.append(key(id), boost::any(value(id)));
        }
    }
    if (!slots.empty()) {
        kept.index();
    }
    *this = std::move(kept);
}

} // namespace velmor2::_internal
