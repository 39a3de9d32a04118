// A bounded per-thread store of list nodes whose strings keep their buffers.
#include "path/component_pool.hpp"

namespace velmor2::_internal {
namespace {

// Enough for a few dozen paths of ordinary depth.
constexpr std::size_t max_nodes = 256;
// A buffer larger than this goes back to the allocator rather than being held.
constexpr std::size_t max_kept_capacity = 128;

struct pool_t {
    std::list<std::wstring> nodes;
    ~pool_t();
};

// Trivially destructible, so still readable while other thread-local objects are destroyed:
// a path destroyed after the pool (at thread or program exit) frees its nodes normally.
thread_local bool pool_alive = true;
thread_local pool_t pool;

pool_t::~pool_t() {
    pool_alive = false;
}

} // namespace

void append_component(std::list<std::wstring>& components, const wchar_t* first,
                      const wchar_t* last) {
    if (pool_alive && !pool.nodes.empty()) {
        components.splice(components.end(), pool.nodes, pool.nodes.begin());
        components.back().assign(first, last);
    } else {
        components.emplace_back(first, last);
    }
}

void recycle_components(std::list<std::wstring>& components) noexcept {
    if (!pool_alive || pool.nodes.size() + components.size() > max_nodes) {
        components.clear();
        return;
    }
    for (std::wstring& name : components) {
        if (name.capacity() > max_kept_capacity) {
            std::wstring().swap(name);
        }
    }
    pool.nodes.splice(pool.nodes.end(), components);
}

} // namespace velmor2::_internal
