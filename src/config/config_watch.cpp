// Watching a store's file and applying what other programs change in it.
//
// A change is judged against two texts of each value: the one the file held when last read,
// and the store's own. A key is applied only when the file's value moved and differs from the
// store's: the store's own saves (whose values it already holds) and its unsaved changes to
// keys nobody else touched are left alone.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/store_watch.hpp"
#include "config/value_store.hpp"
#include "config/xml_quiet.hpp"
#include "os/file_watch.hpp"

#include <libxml/tree.h>

#include <memory>
#include <vector>

namespace velmor2 {
namespace {

// The parent folder to watch for `file`: its branch, or the working folder for a bare name.
std::wstring folder_of(const path_t& file) {
    const std::wstring branch = file.get_branch();
    return branch.empty() ? std::wstring(L".") : branch;
}

} // namespace

std::map<std::wstring, std::string>
advanced_xml_config_t::saved_texts(const _internal::value_store_t& of) const {
    const _internal::quiet_xml_t quiet;
    std::map<std::wstring, std::string> texts;
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(xmlNewDoc(BAD_CAST "1.0"),
                                                             &xmlFreeDoc);
    const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(),
                                                                      &xmlBufferFree);
    for (std::size_t id = 0; id < of.size(); ++id) {
        const boost::any& value = of.value(id);
        std::string& text = texts[std::wstring(of.key(id))];
        const smart_pointer_t<handler_base_t> handler = handler_for_type(value.type());
        if (value.empty() || !handler) {
            // Values without a handler compare by type alone.
            text = value.type().name();
            continue;
        }
        xmlNode* element = xmlNewDocNode(doc.get(), nullptr, BAD_CAST "v", nullptr);
        xmlDocSetRootElement(doc.get(), element);
        {
            _internal::handler_scope_t scope(*handler, this);
            handler->save_value(value, element);
        }
        xmlBufferEmpty(buffer.get());
        xmlNodeDump(buffer.get(), doc.get(), element, 0, 0);
        text.assign(value.type().name()).append(1, '\0');
        text.append(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
                    static_cast<std::size_t>(xmlBufferLength(buffer.get())));
        xmlUnlinkNode(element);
        xmlFreeNode(element);
    }
    return texts;
}

bool advanced_xml_config_t::watch_file(const path_t& file) {
    auto started = std::make_unique<_internal::store_watch_t>();
    started->file = file;
    started->handle = _internal::os::open_folder_watch(folder_of(file));
    if (started->handle == _internal::os::no_watch) {
        return false;
    }
    advanced_xml_config_t on_disk;
    on_disk.handlers = handlers;
    if (on_disk.load(file)) {
        started->on_disk = saved_texts(*on_disk.values);
    }
    watch = std::move(started);
    return true;
}

std::intptr_t advanced_xml_config_t::watch_handle() const {
    return watch ? watch->handle : _internal::os::no_watch;
}

void advanced_xml_config_t::stop_watching() {
    watch.reset();
}

std::size_t advanced_xml_config_t::reload_changes() {
    if (!watch || !_internal::os::drain_folder_watch(watch->handle, watch->file.get_leaf())) {
        return 0;
    }
    advanced_xml_config_t on_disk;
    on_disk.handlers = handlers;
    // A file that is missing for the moment (mid-replacement) or does not load is looked at
    // again at the next change.
    if (!on_disk.load(watch->file)) {
        return 0;
    }
    std::map<std::wstring, std::string> now = saved_texts(*on_disk.values);
    // The keys whose text on disk moved: changed, added or removed.
    std::vector<std::wstring> moved;
    auto before = watch->on_disk.begin();
    for (const auto& [key, text] : now) {
        for (; before != watch->on_disk.end() && before->first < key; ++before) {
            moved.push_back(before->first);
        }
        if (before != watch->on_disk.end() && before->first == key) {
            if (before->second != text) {
                moved.push_back(key);
            }
            ++before;
        } else {
            moved.push_back(key);
        }
    }
    for (; before != watch->on_disk.end(); ++before) {
        moved.push_back(before->first);
    }
    watch->on_disk.swap(now);

    // Removals first, all at once, so that the announcements below find the store consistent.
    std::vector<std::size_t> removed_ids;
    std::vector<std::pair<std::wstring, boost::any>> removed;
    for (const std::wstring& key : moved) {
        const std::size_t own = values->find(key);
        if (on_disk.values->find(key) == _internal::value_store_t::none &&
            own != _internal::value_store_t::none) {
            removed_ids.push_back(own);
            removed.emplace_back(key, values->value(own));
        }
    }
    if (!removed.empty()) {
        values->remove(removed_ids);
    }
    std::size_t announced = 0;
    for (const auto& [key, previous] : removed) {
        ++announced;
        value_changed(key, previous, boost::any());
    }
    for (const std::wstring& key : moved) {
        const std::size_t incoming = on_disk.values->find(key);
        if (incoming == _internal::value_store_t::none) {
            continue;
        }
        // The file's text was made above; only the store's own value needs writing out.
        const std::size_t own = values->find(key);
        if (own != _internal::value_store_t::none) {
            _internal::value_store_t mine;
            mine.append(key, boost::any(values->value(own)));
            if (saved_texts(mine)[key] == watch->on_disk[key]) {
                continue;
            }
        }
        ++announced;
        set_value(key, on_disk.values->value(incoming));
    }
    return announced;
}

} // namespace velmor2
