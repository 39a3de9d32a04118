// The hash index a store keeps beside its ordered values, so that finding a key costs a few
// memory accesses instead of a walk down a tree of thousands of scattered nodes.
#pragma once

#include <boost/any.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace velmor2::_internal::key_index {

/// An entry of the store's values; map entries (and so their keys' text) never move while
/// they exist.
using entry_t = std::pair<const std::wstring, boost::any>;
/// A slot: the key's hash, the key viewing the entry's own text, and the entry; a null entry
/// marks a free slot. The key is kept beside the entry so that comparing it and fetching the
/// entry do not wait for each other.
using slot_t = std::tuple<std::size_t, std::wstring_view, entry_t*>;
/// Open addressing with linear probing over a power-of-two table at most half full. Entries
/// are never removed one by one: the store only clears or replaces all of them.
using index_t = std::vector<slot_t>;

/// True when `name` is ASCII without capitals: its key is the name itself.
bool is_key_form(std::wstring_view name);

/// `name` as keys are kept: `tolower(name)`.
std::wstring key_of_name(std::wstring name);

/// The hash `find` and `add` expect for `key`.
std::size_t hash_of(std::wstring_view key);

/// The entry of `key` whose hash is `hash`; null when it is not indexed.
entry_t* find(const index_t& index, std::wstring_view key, std::size_t hash);

/// Indexes `entry`, which is not indexed yet, under `hash`; `count` entries are indexed
/// before it.
void add(index_t& index, std::size_t count, std::size_t hash, entry_t* entry);

/// Makes room in `index`, which indexes `count` entries, for `more` entries more, so that
/// adding them rebuilds nothing.
void reserve(index_t& index, std::size_t count, std::size_t more);

/// An index of every entry of `values`.
index_t build(std::map<std::wstring, boost::any>& values);

} // namespace velmor2::_internal::key_index
