// The file a save writes, compared byte for byte with a document built the plain way: one
// XPath query per key prefix from the root (a key below a value element is reported), every
// value written by its handler into a libxml2 element, the whole tree written by
// save_xml_document. The save takes shortcuts (its own
// element index, values written as text without a libxml2 node, its own output); whatever the
// keys and values, the bytes and the reported failures must be the same.
#include <velmor2/configuration.hpp>

#include "config/handler_scope.hpp"
#include "config/handlers_internal.hpp"
#include "config/xml_check.hpp"
#include "config/xpath.hpp"
#include "support/temp_tree.hpp"
#include "unicode/convert.hpp"

#include <gtest/gtest.h>

#include <boost/tokenizer.hpp>
#include <libxml/tree.h>

#include <algorithm>
#include <list>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

namespace {

using failures_t = std::vector<std::pair<std::wstring, std::type_index>>;
using string_map = std::map<std::wstring, std::wstring>;
using string_vector = std::vector<std::wstring>;

struct odd_t {
    int n;
};

// Writes what the built-in handlers never do: attributes needing escapes, a comment, a nested
// element, mixed content, and a typed property through the store's handlers.
struct odd_handler_t : velmor2::handler_base_t {
    boost::any load_value(xmlNode*) override { return boost::any(); }
    void save_value(const boost::any& value, xmlNode* element) override {
        const int n = boost::any_cast<odd_t>(value).n;
        set_attribute(element, L"note", L"\"q\"\t<\u00e9>\n&");
        if (n % 2 == 0) {
            xmlAddChild(element, xmlNewDocComment(element->doc, BAD_CAST " c "));
        }
        if (n % 3 == 0) {
            set_node_content(element, L"text \u20ac\r");
        }
        set_any_property(element, L"inner", n);
        if (n % 5 == 0) {
            set_attribute(element, L"bad:name", L"x");
        }
    }
    std::wstring get_type_name() const override { return L"o\"dd"; }
    const std::type_info& get_type_info() const override { return typeid(odd_t); }
};

// Records what the save hook reports.
struct store_t : velmor2::advanced_xml_config_t {
    store_t() { add_handler(velmor2::smart_pointer_t<velmor2::handler_base_t>(new odd_handler_t)); }
    failures_t save_failures;
    // Gives the reference the store's hook.
    void report(const std::wstring& key, const std::type_info& type) {
        on_save_value_failed(key, type);
    }

  protected:
    void on_save_value_failed(const std::wstring& name, const std::type_info& type) override {
        save_failures.emplace_back(name, std::type_index(type));
    }
};

// The save written out step by step, for comparison.
class reference_t {
  public:
    reference_t() {
        velmor2::_internal::add_builtin_handlers(handlers);
        handlers.emplace_back(new odd_handler_t);
    }

    bool save(store_t& store, const velmor2::path_t& file) {
        std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(xmlNewDoc(BAD_CAST "1.0"), &xmlFreeDoc);
        xmlNode* root = xmlNewDocNode(doc.get(), nullptr, BAD_CAST "root", nullptr);
        xmlDocSetRootElement(doc.get(), root);
        std::vector<std::wstring> names;
        store.get_names(names);
        for (const std::wstring& key : names) {
            const boost::any value = store.get_value(key, boost::any());
            std::vector<std::string> pieces;
            if (!split(key, pieces)) {
                store.report(key, value.type());
                continue;
            }
            if (pieces.empty()) {
                continue;
            }
            xmlNode* element = find_or_create(root, pieces);
            if (element == nullptr) {
                store.report(key, value.type());
                continue;
            }
            const auto handler =
                std::find_if(handlers.begin(), handlers.end(), [&](const auto& candidate) {
                    return candidate->get_type_info() == value.type();
                });
            if (handler == handlers.end()) {
                store.report(key, value.type());
                continue;
            }
            xmlSetProp(element, BAD_CAST "type",
                       BAD_CAST velmor2::_internal::to_utf8((*handler)->get_type_name()).c_str());
            {
                velmor2::_internal::handler_scope_t scope(**handler, &store);
                (*handler)->save_value(value, element);
            }
            if (!velmor2::_internal::is_loadable(element)) {
                // Left as an empty group.
                xmlFreePropList(element->properties);
                element->properties = nullptr;
                xmlFreeNodeList(element->children);
                element->children = element->last = nullptr;
                store.report(key, value.type());
            }
        }
        return velmor2::save_xml_document(file, doc.get());
    }

  private:
    static bool split(const std::wstring& key, std::vector<std::string>& pieces) {
        using separator_t = boost::char_separator<char>;
        const std::string utf8 = velmor2::_internal::to_utf8(key);
        for (const std::string& token : boost::tokenizer<separator_t>(utf8, separator_t("."))) {
            if (!velmor2::_internal::is_element_name(token) ||
                pieces.size() + 1 >= velmor2::_internal::max_element_depth) {
                return false;
            }
            pieces.push_back(token);
        }
        return true;
    }

    // The new element of the pieces, or null when it exists or lies below a value element.
    static xmlNode* find_or_create(xmlNode* root, const std::vector<std::string>& pieces) {
        xmlNode* current = root;
        std::string expression;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            expression += (i > 0 ? "/" : "") + pieces[i];
            std::vector<xmlNode*> found;
            velmor2::_internal::select_nodes(root, expression, found);
            if (found.empty()) {
                for (std::size_t j = i; j < pieces.size(); ++j) {
                    current = xmlNewChild(current, nullptr, BAD_CAST pieces[j].c_str(), nullptr);
                }
                return current;
            }
            current = found.front();
            if (xmlHasProp(current, BAD_CAST "type") != nullptr) {
                return nullptr;
            }
        }
        return nullptr;
    }

    std::list<velmor2::smart_pointer_t<velmor2::handler_base_t>> handlers;
};

void expect_same_save(store_t& store) {
    velmor_test::temp_tree_t dir;
    ASSERT_TRUE(store.save(dir.path("fast.xml")));
    const failures_t fast_failures = store.save_failures;
    store.save_failures.clear();
    reference_t reference;
    ASSERT_TRUE(reference.save(store, dir.path("plain.xml")));
    EXPECT_EQ(dir.read("fast.xml"), dir.read("plain.xml"));
    EXPECT_EQ(fast_failures, store.save_failures);
    store.save_failures.clear();
}

TEST(save_reference, texts_that_need_escapes_or_stop_early) {
    store_t store;
    const std::wstring texts[] = {
        L"",
        L"plain",
        L"<a & b> \"q\" 'a'",
        L"cr\r lf\n tab\t",
        L"\u00e9\u20ac\U0001F600",
        std::wstring(L"\0abc", 4),
        std::wstring(L"ab\0c", 4),
        L"ctrl\x01",
        L"\xFFFE",
        L"&amp; &#65; ]]>",
        std::wstring(1, static_cast<wchar_t>(0xD800)),
    };
    int i = 0;
    for (const std::wstring& text : texts) {
        const std::wstring n = std::to_wstring(i++);
        store.set_value(L"s.t" + n, text);
        store.set_value(L"s.t" + n + L".below", 1);
        store.set_value(L"v.t" + n, string_vector{text, L"x"});
        store.set_value(L"m.t" + n, string_map{{text, text}});
        store.set_value(L"p.t" + n, velmor2::make_path(text));
    }
    expect_same_save(store);
}

TEST(save_reference, every_type_and_keys_into_values) {
    store_t store;
    store.set_value(L"t.bool", false);
    store.set_value(L"t.long", -9000000000L);
    store.set_value(L"t.ushort", static_cast<unsigned short>(7));
    store.set_value(L"t.float", 1e-20f);
    store.set_value(L"t.double", 1.0 / 3.0);
    store.set_value(L"t.list", std::list<std::wstring>{L"a"});
    store.set_value(L"t.ints", std::vector<int>{1, 2});
    store.set_value(L"t.empty", boost::any());
    store.set_value(L"t.unknown", std::type_index(typeid(int)));
    // Keys below scalar, container, cleared and custom value elements, and below a group
    // whose name appears again after a sibling that sorts in between.
    store.set_value(L"a", 1);
    store.set_value(L"a-b", 2);
    store.set_value(L"a.b", 3);
    store.set_value(L"a.b.c", 4);
    store.set_value(L"bad", std::wstring(L"\x01"));
    store.set_value(L"bad.x", 5);
    store.set_value(L"o", odd_t{30});
    store.set_value(L"o.inner", 6);
    store.set_value(L"o.new.deeper", 8);
    store.set_value(L"t.ints.item", 9);
    store.set_value(L".a.b.d", 10);
    store.set_value(L"x..y", 11);
    store.set_value(L"x.y", 12);
    store.set_value(std::wstring(L"nul.a\0b", 7), 13);
    for (int n = 1; n <= 6; ++n) {
        store.set_value(L"odd.n" + std::to_wstring(n), odd_t{n});
    }
    expect_same_save(store);
}

TEST(save_reference, deep_keys_past_the_indentation_limit_and_the_depth_limit) {
    store_t store;
    std::wstring key = L"d";
    for (int level = 1; level < 300; ++level) {
        key += L".l" + std::to_wstring(level);
        if (level % 7 == 0 || (level >= 250 && level <= 256)) {
            store.set_value(key, level);
        }
    }
    std::wstring odd_key = L"e";
    for (int level = 1; level < 253; ++level) {
        odd_key += L".l";
    }
    store.set_value(odd_key, odd_t{3});
    store.set_value(odd_key + L".inner.x", 1);
    expect_same_save(store);
}

TEST(save_reference, random_keys_and_values) {
    const wchar_t* const pieces[] = {L"a", L"b",      L"a-b", L"item", L"inner", L"x1",
                                     L"",  L"\u00e9", L"_",   L"1x",   L"a b",   L"c.d"};
    std::mt19937 random(20240611);
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        store_t store;
        for (int k = 0; k < 40; ++k) {
            std::wstring key;
            const int count = 1 + static_cast<int>(random() % 4);
            for (int p = 0; p < count; ++p) {
                key += (p > 0 ? L"." : L"") + std::wstring(pieces[random() % std::size(pieces)]);
            }
            // One draw picks the kind; only the kind picked draws again.
            const auto piece = [&] { return pieces[random() % std::size(pieces)]; };
            const unsigned kind = random() % 6;
            store.set_value(key, kind == 0   ? boost::any(static_cast<int>(random() % 100))
                                 : kind == 1 ? boost::any(std::wstring(L"s&<") + piece())
                                 : kind == 2 ? boost::any(string_vector{L"i", piece()})
                                 : kind == 3 ? boost::any(odd_t{static_cast<int>(random() % 30)})
                                 : kind == 4 ? boost::any(string_map{{L"k", L"v"}})
                                             : boost::any());
        }
        expect_same_save(store);
    }
}

} // namespace
