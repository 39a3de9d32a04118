// A typed key/value configuration store kept in an XML file, its value handlers, and the XML
// document access underneath.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>
#include <velmor2/signal.hpp>

#include <boost/any.hpp>

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

// libxml2's document and node types; users who write handlers include <libxml/tree.h>.
extern "C" {
struct _xmlDoc;
struct _xmlNode;
typedef struct _xmlDoc xmlDoc;
typedef struct _xmlNode xmlNode;
}

namespace velmor2 {

class advanced_xml_config_t;
namespace _internal {
class handler_scope_t;
struct store_watch_t;
class value_store_t;
struct load_failure_t;
} // namespace _internal

/// A reference-counted owning pointer with a separately allocated, non-atomic count; copies
/// share the object, the last one deletes it. A pointer and its copies belong to one thread at
/// a time.
///
///   smart_pointer_t<T> a(new T)  => count 1
///   smart_pointer_t<T> b(a)      => count 2, same object
///   a and b destroyed            => object deleted once
template <typename T> class smart_pointer_t {
  public:
    /// Owns `object`; a null pointer gets no count.
    explicit smart_pointer_t(T* object = nullptr)
        : object(object), count(object != nullptr ? new std::uint32_t(1) : nullptr) {}
    /// Shares the object of `other`.
    smart_pointer_t(const smart_pointer_t& other) : object(other.object), count(other.count) {
        add_reference();
    }
    /// Releases the own object, then shares the object of `other`.
    smart_pointer_t& operator=(const smart_pointer_t& other) {
        if (this != &other) {
            release();
            object = other.object;
            count = other.count;
            add_reference();
        }
        return *this;
    }
    /// Releases the object: deleted when this was the last pointer to it.
    ~smart_pointer_t() { release(); }

    /// The object, or null.
    T* get() const { return object; }
    /// The object; must not be null.
    T* operator->() const { return object; }
    /// The object; must not be null.
    T& operator*() const { return *object; }
    /// True when a pointer is held.
    explicit operator bool() const { return object != nullptr; }

  private:
    void add_reference() {
        if (object == nullptr) {
            return;
        }
        if (count == nullptr) {
            count = new std::uint32_t(0);
        }
        ++*count;
    }
    void release() {
        if (object == nullptr || count == nullptr || *count == 0) {
            return;
        }
        if (--*count == 0) {
            delete count;
            count = nullptr;
            delete object;
        }
        object = nullptr;
        count = nullptr;
    }

    T* object;
    std::uint32_t* count;
};

/// Converts between one value type, held in a `boost::any`, and the XML element that stores
/// it. The store picks a handler by type name when loading and by held type when saving.
///
/// A derived handler implements the four pure operations and uses the protected helpers,
/// which take and give wide text (UTF-8 on the libxml2 side).
class VELMOR_API handler_base_t {
  public:
    /// A handler working for no store.
    handler_base_t();
    /// Copies the store the handler works for.
    handler_base_t(const handler_base_t& other);
    /// Copies the store the handler works for.
    handler_base_t& operator=(const handler_base_t& other);
    /// Destroys the handler.
    virtual ~handler_base_t();

    /// Builds the value stored in `element`; an empty `boost::any` when the text does not
    /// convert. Never throws for bad data.
    virtual boost::any load_value(xmlNode* element) = 0;
    /// Writes `value` into the freshly created `element`; writes nothing when `value` does not
    /// hold the handler's type.
    virtual void save_value(const boost::any& value, xmlNode* element) = 0;
    /// The name written to the `type` attribute (exact, case-sensitive).
    virtual std::wstring get_type_name() const = 0;
    /// The type `save_value` accepts.
    virtual const std::type_info& get_type_info() const = 0;

  protected:
    /// Sets the store on whose behalf the handler works (null outside a store's call).
    void set_parent(const advanced_xml_config_t* store);

    /// Text of the node's children, entity references substituted; empty if none.
    std::wstring get_node_content(xmlNode* node);
    /// Appends `text` to the node's content; earlier content stays.
    void set_node_content(xmlNode* node, const std::wstring& text) const;
    /// Creates a child element `name` whose content is `value` as libxml2 reads it: `&` starts
    /// an entity or character reference.
    void add_property(xmlNode* node, const std::wstring& name, const std::wstring& value) const;
    /// Text of the first node `find_nodes(node, name)` selects; empty if none.
    std::wstring get_property(xmlNode* node, const std::wstring& name);
    /// Appends `value` to the first node `find_nodes(node, name)` selects, or creates a child
    /// as `add_property` does.
    void set_property(xmlNode* node, const std::wstring& name, const std::wstring& value) const;
    /// Value of attribute `name`; empty if missing.
    std::wstring get_attribute(xmlNode* node, const std::wstring& name);
    /// Creates or replaces attribute `name`.
    void set_attribute(xmlNode* node, const std::wstring& name, const std::wstring& value) const;
    /// Typed value read from the first node `find_nodes(node, name)` selects through the
    /// store's handler for `type_name`; empty when there is no node or no handler.
    boost::any get_any_property(xmlNode* node, const std::wstring& name,
                                const std::wstring& type_name);
    /// Writes `value` into the first node `find_nodes(node, name)` selects, or a new child
    /// `name`, through the store's handler for the held type; false when there is none (a
    /// child created for it stays).
    bool set_any_property(xmlNode* node, const std::wstring& name, const boost::any& value) const;
    /// Nodes an XPath expression selects with `node` as context, in document order; empty for
    /// no match or an invalid expression.
    ///
    ///   item    => the child elements named item
    ///   a/b     => elements b below children a
    ///   ][      => (empty: not XPath)
    std::vector<xmlNode*> find_nodes(xmlNode* node, const std::wstring& expression);

  private:
    friend class advanced_xml_config_t;
    friend class _internal::handler_scope_t;

    /// The store the handler works for; set only during the store's call.
    const advanced_xml_config_t* parent;
};

/// A typed key/value store kept in an XML file. Keys are case-insensitive (stored lower-cased)
/// and "." separates their levels; each value is a `boost::any` of one of the built-in types
/// (bool, int, long, unsigned long, unsigned short, unsigned int, float, double, std::wstring,
/// std::vector<std::wstring>, std::list<std::wstring>, std::vector<int>,
/// std::map<std::wstring, std::wstring>, path_t) or of a type an added handler serves.
///
///   set_value(L"General.Width", 10)  => key general.width
///   save                             => <root><general><width
///   type="int">10</width></general></root>
///
/// Numbers are written and read in the classic "C" form whatever the global locale. Not
/// locked: one thread at a time per store; `value_changed` locks itself.
class VELMOR_API advanced_xml_config_t {
  public:
    /// An empty store with the fourteen built-in handlers.
    advanced_xml_config_t();
    /// Copies the values (cloned) and the signal's connections; shares the handlers.
    advanced_xml_config_t(const advanced_xml_config_t& other);
    /// Adds the source's missing connections, then (unless self-assignment) replaces the
    /// values by clones and the handler list by the source's shared handlers.
    advanced_xml_config_t& operator=(const advanced_xml_config_t& other);
    /// Releases handlers, values and the signal.
    virtual ~advanced_xml_config_t();

    /// Replaces the values by those of `file`, announcing each through `value_changed`.
    /// False, values untouched, when the file cannot be read, is locked by a writer, is not
    /// well-formed XML, or its entity references expand to more than 10,000,000 bytes of text.
    bool load(const path_t& file);
    /// Writes every value to `file` (UTF-8, two-space indentation), replacing it in one step
    /// (see `save_xml_document`). Keys whose pieces are not XML names and values that cannot
    /// be written or would not load back (past the parser's size limits too) are reported to
    /// `on_save_value_failed` and left out. False, the file as it was, when it cannot be
    /// written or is locked.
    bool save(const path_t& file);

    /// The value stored under `tolower(name)`, or `default_value` when there is no such key.
    /// A key holding an empty value (text that did not convert) yields the empty value.
    boost::any get_value(const std::wstring& name, const boost::any& default_value);
    /// Stores `value` under `tolower(name)` and fires `value_changed(key, previous, value)`,
    /// also when the value did not change.
    void set_value(const std::wstring& name, const boost::any& value);
    /// Whether `tolower(name)` is a key.
    bool has_value(const std::wstring& name) const;
    /// Replaces `names` by every key, lower-cased, in ascending order.
    void get_names(std::vector<std::wstring>& names) const;
    /// Appends a handler; a type name or held type an earlier handler serves stays with it.
    void add_handler(smart_pointer_t<handler_base_t> handler);

    /// Puts `lower` under the store: `get_value` and `has_value` consult it (and its own lower
    /// layer) for keys the store does not hold. `set_value`, `save`, `load` and `get_names`
    /// concern the store's own values only; the lower layer is never written. Null removes
    /// the layer. False, nothing changed, when `lower` is this store or has it below.
    ///
    ///   defaults: general.width = 80        user: general.width = 120
    ///   user.set_lower_layer(defaults)      user.get_value(L"general.width") => 120
    ///   defaults: general.height = 25       user.get_value(L"general.height") => 25
    bool set_lower_layer(std::shared_ptr<const advanced_xml_config_t> lower);
    /// The layer under the store, or null.
    std::shared_ptr<const advanced_xml_config_t> get_lower_layer() const;

    /// Starts watching `file` for saves by other programs, replacing an earlier watch. The
    /// file's current content is the starting point: loads nothing, announces nothing. False
    /// when the file's folder cannot be watched.
    bool watch_file(const path_t& file);
    /// What to wait on for changes to the watched file: a descriptor that turns readable on
    /// POSIX, a waitable HANDLE on Windows; -1 when nothing is watched. Starts no thread.
    std::intptr_t watch_handle() const;
    /// Takes the pending notifications off `watch_handle` without blocking and, when the
    /// watched file changed, applies what changed on disk since the watch started or since
    /// the last reload: each key whose value there changed, was added or was removed, and
    /// differs from the store's own, is set (or removed) and announced once through
    /// `value_changed` (a removed key with an empty new value). Other keys, unsaved changes
    /// included, stay. The store's own saves therefore announce nothing. A file that does
    /// not load changes nothing and is tried again at the next change. The number of keys
    /// announced.
    std::size_t reload_changes();
    /// Ends the watch; its handle is closed.
    void stop_watching();

    /// Fired by every `set_value` (and so by `load`) with (key, previous value, new value);
    /// the previous value is empty for a new key.
    _internal::signal_t<const std::wstring&, const boost::any&, const boost::any&,
                        _internal::dummy_t, _internal::dummy_t, _internal::dummy_t>
        value_changed;

  protected:
    /// Called by `load` for an element whose type name no handler knows; does nothing.
    virtual void on_load_value_failed(const std::wstring& name, const std::wstring& type_name);
    /// Called by `save` for a value it cannot write (no handler for `type`, or a key piece that
    /// is not an XML name, or content a reader would reject); does nothing.
    virtual void on_save_value_failed(const std::wstring& name, const std::type_info& type);

  private:
    friend class handler_base_t;

    /// Reads every value element of `file` into `read`, in document order, and the elements
    /// no handler reads into `failed`; false when the file does not load.
    bool read_file(const path_t& file, _internal::value_store_t& read,
                   std::vector<_internal::load_failure_t>& failed);
    /// `set_value` with the key already lower-cased.
    void put_value(const std::wstring& key, boost::any value);
    /// Fires `value_changed` for the entry `id`, unless nobody listens.
    void announce(const std::wstring& key, const boost::any& previous, std::size_t id);
    /// The first handler of `type_name`, shared; empty when none serves it.
    smart_pointer_t<handler_base_t> handler_for_name(const std::wstring& type_name) const;
    /// The first handler of the held type `type`, shared; empty when none serves it.
    smart_pointer_t<handler_base_t> handler_for_type(const std::type_info& type) const;
    /// The value under the lower-cased `key`, whose hash is `hash`, in the store or a layer
    /// below; null if none.
    const boost::any* find_value(const std::wstring& key, std::uint64_t hash) const;
    /// The XML text each value of `of` would be saved as, by key, for comparing values.
    std::map<std::wstring, std::string> saved_texts(const _internal::value_store_t& of) const;

    /// The values under lower-cased keys; never null.
    std::unique_ptr<_internal::value_store_t> values;
    /// The handlers, searched front to back; the first match wins.
    std::list<smart_pointer_t<handler_base_t>> handlers;
    /// The layer under the store's own values, or null.
    std::shared_ptr<const advanced_xml_config_t> lower;
    /// The watched file and what it held when last read; null when nothing is watched.
    std::unique_ptr<_internal::store_watch_t> watch;
};

/// Opens `file` for reading (other writers excluded) and parses it without printing errors;
/// null when it cannot be opened, is being written, or is not well-formed. Free the result
/// with `xmlFreeDoc`.
VELMOR_API xmlDoc* open_xml_document(const path_t& file);

/// Writes `doc` to `file` as formatted UTF-8 XML, replacing it, while nobody else may read or
/// write it; true when it was written. The document goes to a new file in the same folder,
/// flushed to the disk and then renamed over the old file, so a failed or interrupted save
/// leaves the old file byte for byte (and no new file on an ordinary failure); the old file's
/// permission bits stay. Where the folder takes no new file but the file is writable, the file
/// is written in place. A file held by another reader or writer is left untouched. `doc` is
/// not freed.
VELMOR_API bool save_xml_document(const path_t& file, xmlDoc* doc);

} // namespace velmor2
