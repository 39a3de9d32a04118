// The values of a store, kept flat: the keys' text and the entries in blocks that never move,
// and a hash index of entry numbers. A store of many keys costs few allocations besides its
// values, keys made in order are read back in memory order, and a look-up touches one slot and
// then the entry. Figures: docs/performance.md, "Configuration store".
#pragma once

#include <boost/any.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmor2::_internal {

/// Keys (compared as `std::wstring` compares) and their values, each entry numbered by the
/// order it was added in. Entry numbers stay until `remove` or `clear`.
class value_store_t {
  public:
    /// No entry.
    static constexpr std::size_t none = SIZE_MAX;

    /// No entry.
    value_store_t() = default;
    /// Copies every entry (values cloned) and the index.
    value_store_t(const value_store_t& other);
    /// Copies every entry of `other` (values cloned) and its index.
    value_store_t& operator=(const value_store_t& other);
    /// Takes the entries of `other`, which is left empty.
    value_store_t(value_store_t&& other) noexcept = default;
    /// Takes the entries of `other`.
    value_store_t& operator=(value_store_t&& other) noexcept = default;
    ~value_store_t() = default;

    /// Number of entries.
    std::size_t size() const { return count; }
    /// The key of entry `id`; its text stays where it is until `remove` or `clear`.
    std::wstring_view key(std::size_t id) const {
        const entry_t& found = entry(id);
        return std::wstring_view(found.key, found.key_size);
    }
    /// The value of entry `id`.
    boost::any& value(std::size_t id) { return entry(id).value; }
    /// The value of entry `id`.
    const boost::any& value(std::size_t id) const { return entry(id).value; }

    /// True when every key is greater than the one added before it, so that entry order is
    /// key order and no key is there twice.
    bool ascending() const { return in_key_order; }

    /// The entry of `key`, or `none`.
    std::size_t find(std::wstring_view key) const;
    /// The entry of `key`, whose `hash_key` is `hash`, or `none`.
    std::size_t find(std::wstring_view key, std::uint64_t hash) const;

    /// Stores `value` under `key`: in a store in key order, a key after the last one is added
    /// without a look-up; any other is looked up (indexing the store first). The previous
    /// value, empty for a new key, goes to `previous`; the entry's number is returned.
    std::size_t put(std::wstring_view key, boost::any&& value, boost::any& previous);

    /// Adds an entry for `key` without looking for it, so that a key can be there twice: for
    /// a log of values read, replayed or taken over once complete.
    void append(std::wstring_view key, boost::any&& value);

    /// Builds the index unless it is built: until then, look-ups search the ordered keys.
    void index();

    /// Calls `use(id)` for every entry in ascending key order.
    template <typename use_t> void for_each_in_order(use_t use) const {
        if (in_key_order) {
            for (std::size_t id = 0; id < count; ++id) {
                use(id);
            }
        } else {
            for (const std::size_t id : sorted_ids()) {
                use(id);
            }
        }
    }

    /// Removes the entries whose numbers `ids` holds; the others are renumbered in order.
    void remove(const std::vector<std::size_t>& ids);

    /// Removes every entry.
    void clear() { *this = value_store_t(); }

  private:
    struct entry_t {
        const wchar_t* key = nullptr;
        std::size_t key_size = 0;
        boost::any value;
    };
    // Entries and keys live in blocks that never move and stay below the size the allocator
    // maps afresh from the system: a store grows without copying and, dropped, leaves memory
    // the next one reuses. Key blocks start small and double, so that a small store stays
    // small.
    static constexpr std::size_t entry_block_bits = 8;
    static constexpr std::size_t entry_block_size = std::size_t(1) << entry_block_bits;
    static constexpr std::size_t first_key_block = 256;
    static constexpr std::size_t last_key_block = 8192;

    entry_t& entry(std::size_t id) {
        return entry_blocks[id >> entry_block_bits][id & (entry_block_size - 1)];
    }
    const entry_t& entry(std::size_t id) const {
        return entry_blocks[id >> entry_block_bits][id & (entry_block_size - 1)];
    }
    std::vector<std::size_t> sorted_ids() const;
    std::size_t find_indexed(std::wstring_view key, std::uint64_t hash) const;
    // Adds an entry; `after_last` tells whether `key` follows the last one, `hash` is its hash
    // when the store is indexed.
    void add(std::wstring_view key, boost::any&& value, bool after_last, std::uint64_t hash);
    void place(std::uint64_t hash, std::size_t id);
    void resize_index(std::size_t entries);

    std::vector<std::unique_ptr<entry_t[]>> entry_blocks;
    std::size_t count = 0;
    std::vector<std::unique_ptr<wchar_t[]>> key_blocks;
    // The unused end of the last key block that is not a long key's own, and that block's
    // size.
    wchar_t* key_room = nullptr;
    std::size_t key_room_size = 0;
    std::size_t key_block_size = 0;
    bool in_key_order = true;
    // Open addressing with linear probing, at most half full: a slot holds the key's hash in
    // its high half and the entry number plus one in its low half, zero when free. Empty until
    // built; once built it indexes every entry. `put` indexes a store before it leaves key
    // order, so only a log made by `append` is ever searched entry by entry.
    std::vector<std::uint64_t> slots;
};

} // namespace velmor2::_internal
