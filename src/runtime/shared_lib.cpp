// Shared libraries loaded by name from a directory, one system reference per object.
#include <velmor2/runtime.hpp>

#include "os/dynamic_library.hpp"

#include <utility>

namespace velmor2 {
namespace {

// Without a directory the name alone goes to the system, which searches its usual places.
void* load(const std::wstring& name, const path_t& dir) {
    path_t file(dir);
    if (dir.is_empty()) {
        file = path_t(name);
    } else if (!file.append(path_t(name))) {
        return nullptr;
    }
    return _internal::os::load_library(file.as_string());
}

} // namespace

shared_lib_t::shared_lib_t() : handle_(nullptr) {}

shared_lib_t::shared_lib_t(const std::wstring& name, const path_t& dir) : handle_(nullptr) {
    initialize(name, dir);
}

shared_lib_t::shared_lib_t(const shared_lib_t& other) : handle_(nullptr) {
    initialize(other.name_, other.dir_);
}

shared_lib_t& shared_lib_t::operator=(const shared_lib_t& other) {
    shared_lib_t copy(other);
    swap(copy);
    return *this;
}

shared_lib_t::~shared_lib_t() {
    uninitialize();
}

bool shared_lib_t::initialize(const std::wstring& name, const path_t& dir) {
    uninitialize();
    if (name.empty()) {
        return false;
    }
    handle_ = load(name, dir);
    if (handle_ == nullptr) {
        // The suffix is added even to a name that already has it.
        handle_ = load(name + _internal::os::library_suffix(), dir);
    }
    name_ = name;
    dir_ = dir;
    return handle_ != nullptr;
}

void shared_lib_t::uninitialize() {
    if (handle_ == nullptr) {
        return;
    }
    _internal::os::free_library(handle_);
    handle_ = nullptr;
    name_.clear();
    dir_ = path_t();
}

shared_lib_t::operator bool() const {
    return handle_ != nullptr;
}

void* shared_lib_t::get_symbol(const std::wstring& name) const {
    return handle_ == nullptr ? nullptr : _internal::os::find_symbol(handle_, name);
}

void shared_lib_t::swap(shared_lib_t& other) {
    if (&other == this) {
        return;
    }
    std::swap(handle_, other.handle_);
    name_.swap(other.name_);
    std::swap(dir_, other.dir_);
}

std::wstring suffixize_lib_name(const std::wstring& name) {
    return name;
}

} // namespace velmor2
