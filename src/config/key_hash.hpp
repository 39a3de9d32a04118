// Hashing a store's keys for its index, and telling which names are keys as they stand.
#pragma once

#include <cstdint>
#include <string_view>

namespace velmor2::_internal {

/// A name's hash for a store's index, and whether the name is a key as it stands.
struct key_hash_t {
    std::uint64_t hash;
    bool key_form;
};

/// The hash of `name`'s units and whether `name` is ASCII without capitals, in one pass. The
/// hash is the same for every store of the process and differs from run to run, so that no
/// file can be made whose keys all fall on one slot.
key_hash_t hash_key(std::wstring_view name);

/// True when `name` is ASCII without capitals: its key is the name itself.
bool is_key_form(std::wstring_view name);

} // namespace velmor2::_internal
