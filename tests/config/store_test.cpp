#include <velmor2/configuration.hpp>

#include "config_files.hpp"
#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <locale>
#include <map>
#include <string>
#include <typeindex>
#include <vector>

namespace {

using velmor2::advanced_xml_config_t;
using velmor_test::temp_tree_t;

using string_vector = std::vector<std::wstring>;
using string_list = std::list<std::wstring>;
using string_map = std::map<std::wstring, std::wstring>;

// Records what the hooks report.
struct store_t : advanced_xml_config_t {
    std::vector<std::pair<std::wstring, std::wstring>> load_failures;
    std::vector<std::pair<std::wstring, std::type_index>> save_failures;

  protected:
    void on_load_value_failed(const std::wstring& name, const std::wstring& type_name) override {
        load_failures.emplace_back(name, type_name);
    }
    void on_save_value_failed(const std::wstring& name, const std::type_info& type) override {
        save_failures.emplace_back(name, std::type_index(type));
    }
};

// Records every change notification.
struct watcher_t : velmor2::_internal::subscriber_base_t {
    struct change_t {
        std::wstring key;
        boost::any previous;
        boost::any value;
    };
    std::vector<change_t> changes;
    void on_change(const std::wstring& key, const boost::any& previous, const boost::any& value) {
        changes.push_back({key, previous, value});
    }
};

template <typename T> T get(advanced_xml_config_t& store, const std::wstring& key) {
    return boost::any_cast<T>(store.get_value(key, boost::any()));
}

std::vector<std::wstring> names_of(const advanced_xml_config_t& store) {
    std::vector<std::wstring> names{L"stale"};
    store.get_names(names);
    return names;
}

// Saves `store` and loads the file into a fresh store.
store_t reload(store_t& store, temp_tree_t& dir) {
    EXPECT_TRUE(store.save(dir.path("f.xml")));
    store_t loaded;
    EXPECT_TRUE(loaded.load(dir.path("f.xml")));
    return loaded;
}

// True when both hold the same value of one of the types T.
template <typename... T> bool same_value(const boost::any& a, const boost::any& b) {
    return ((a.type() == typeid(T) && b.type() == typeid(T) &&
             boost::any_cast<T>(a) == boost::any_cast<T>(b)) ||
            ...);
}

TEST(config_store, every_value_type_survives_save_and_load) {
    const std::pair<const wchar_t*, boost::any> values[] = {
        {L"t.bool", true},
        {L"t.int", -2147483647 - 1},
        // long is 32 bits on Windows, 64 on Linux.
        {L"t.long", std::numeric_limits<long>::min()},
        {L"t.ulong", std::numeric_limits<unsigned long>::max()},
        {L"t.ushort", static_cast<unsigned short>(65535)},
        {L"t.uint", 4294967295U},
        {L"t.float", 0.25f},
        {L"t.double", -1.5e-7},
        {L"t.string", std::wstring(L"  <a & b> \"q\" \u00e4\u20ac\U0001F600\n  ")},
        // Entries that read as markup unless escaped.
        {L"t.vector", string_vector{L"AT&T", L"", L"a & b", L"&", L"R&D;", L"a&amp;b", L"&#65;"}},
        {L"t.list", string_list{L"<x/>", L"a > b", L"\"'", L"]]>", L"a&foo;b"}},
        {L"t.ints", std::vector<int>{3, -1, 0}},
        {L"t.map", string_map{{L"k", L"v\"<"}, {L"", L"empty key"}}},
        {L"t.path", velmor2::make_path(L"C:\\Program Files\\x.txt")},
        {L"t.empty_vector", string_vector{}},
    };
    temp_tree_t dir;
    store_t store;
    for (const auto& [key, value] : values) {
        store.set_value(key, value);
    }
    store_t loaded = reload(store, dir);
    EXPECT_EQ(names_of(loaded), names_of(store));
    EXPECT_TRUE(loaded.load_failures.empty());
    EXPECT_TRUE(store.save_failures.empty());
    for (const auto& [key, value] : values) {
        SCOPED_TRACE(key);
        EXPECT_TRUE(
            (same_value<bool, int, long, unsigned long, unsigned short, unsigned int, float, double,
                        std::wstring, string_vector, string_list, std::vector<int>, string_map,
                        velmor2::path_t>(loaded.get_value(key, boost::any()), value)));
    }
}

TEST(config_store, file_format_byte_for_byte) {
    temp_tree_t dir;
    advanced_xml_config_t store;
    store.set_value(L"General.Width", 10);
    store.set_value(L"recent", string_vector{L"a", L"b"});
    store.set_value(L"general.ratio", 1.0 / 3.0);
    store.set_value(L"map", string_map{{L"k", L"v"}});
    store.set_value(L"big", 1e6);
    ASSERT_TRUE(store.save(dir.path("f.xml")));
    EXPECT_EQ(dir.read("f.xml"),
              config_test::saved_bytes("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<root>\n"
                                       "  <big type=\"double\">1e+06</big>\n"
                                       "  <general>\n"
                                       "    <ratio type=\"double\">0.333333</ratio>\n"
                                       "    <width type=\"int\">10</width>\n"
                                       "  </general>\n"
                                       "  <map type=\"string_string_map\">\n"
                                       "    <item key=\"k\" value=\"v\"/>\n"
                                       "  </map>\n"
                                       "  <recent type=\"string_vector\">\n"
                                       "    <item>a</item>\n"
                                       "    <item>b</item>\n"
                                       "  </recent>\n"
                                       "</root>\n"));
}

TEST(config_store, keys_ignore_case_and_every_set_notifies_copies_too) {
    advanced_xml_config_t store;
    watcher_t watcher;
    store.value_changed.connect(&watcher, &watcher_t::on_change);
    store.set_value(L"A.B", 1);
    store.set_value(L"a.b", 1);
    store.set_value(L"a.B", std::wstring(L"x"));
    EXPECT_EQ(get<std::wstring>(store, L"A.b"), L"x");
    EXPECT_FALSE(store.has_value(L"a"));
    EXPECT_EQ(boost::any_cast<int>(store.get_value(L"missing", 42)), 42);
    EXPECT_EQ(names_of(store), (std::vector<std::wstring>{L"a.b"}));
    ASSERT_EQ(watcher.changes.size(), 3u);
    EXPECT_EQ(watcher.changes[0].key, L"a.b");
    EXPECT_TRUE(watcher.changes[0].previous.empty());
    EXPECT_EQ(boost::any_cast<int>(watcher.changes[1].previous), 1);
    EXPECT_EQ(boost::any_cast<int>(watcher.changes[2].previous), 1);
    EXPECT_EQ(boost::any_cast<std::wstring>(watcher.changes[2].value), L"x");

    // Copies hold their own values and keep the connections.
    advanced_xml_config_t copy(store);
    copy.set_value(L"a.b", 2);
    EXPECT_EQ(get<std::wstring>(store, L"a.b"), L"x");
    EXPECT_EQ(watcher.changes.size(), 4u);
    advanced_xml_config_t assigned;
    assigned = copy;
    const advanced_xml_config_t& same = assigned;
    assigned = same;
    assigned.set_value(L"a.b", 3);
    EXPECT_EQ(get<int>(copy, L"a.b"), 2);
    EXPECT_EQ(watcher.changes.size(), 5u);
}

TEST(config_store, a_load_in_key_order_reports_in_file_order_to_listeners_that_change_it) {
    // Hook and listener write to one log; the listener adds keys, past the store's blocks.
    struct logging_t : advanced_xml_config_t, velmor2::_internal::subscriber_base_t {
        std::vector<std::wstring> log;
        void on_change(const std::wstring& key, const boost::any&, const boost::any& value) {
            log.push_back(key + L"=" + std::to_wstring(boost::any_cast<int>(value)));
            for (int n = 0; n < 300 && key.size() == 1; ++n) {
                set_value(key + L".added" + std::to_wstring(n), n);
            }
        }
        void on_load_value_failed(const std::wstring& name, const std::wstring&) override {
            log.push_back(name + L"?");
        }
    };
    temp_tree_t dir;
    dir.write("f.xml", "<root><a type=\"int\">1</a><b type=\"no\">2</b><c type=\"int\">3</c>"
                       "<d type=\"no\">4</d></root>");
    logging_t store;
    store.value_changed.connect(&store, &logging_t::on_change);
    ASSERT_TRUE(store.load(dir.path("f.xml")));
    ASSERT_EQ(store.log.size(), 604u);
    EXPECT_EQ(store.log[0], L"a=1");
    EXPECT_EQ(store.log[301], L"b?");
    EXPECT_EQ(store.log[302], L"c=3");
    EXPECT_EQ(store.log[603], L"d?");
    EXPECT_EQ(get<int>(store, L"c.added299"), 299);
}

TEST(config_store, hand_written_values_that_do_not_convert_load_empty) {
    temp_tree_t dir;
    // `value` is TYPE">TEXT, the type and the text of a value element.
    const auto loads_empty = [&](const char* value) {
        dir.write("f.xml", std::string("<root><x type=\"") + value + "</x></root>");
        store_t store;
        EXPECT_TRUE(store.load(dir.path("f.xml")) && store.has_value(L"x")) << value;
        return store.get_value(L"x", 7).empty();
    };
    for (const char* value :
         {"int\">abc", "int\">12abc", "int\"> 1", "int\">1 ", "int\">", "int\">99999999999",
          "int\">1,000", "bool\">true", "bool\"> 1", "bool\">2", "unsigned int\">-1",
          "unsigned short\">65536", "double\">0,5", "double\">1e400", "double\">0x10",
          "long\">\xD9\xA1"}) {
        EXPECT_TRUE(loads_empty(value)) << value;
    }
    for (const char* value : {"int\">+5", "bool\">1", "float\">1.5", "string\">"}) {
        EXPECT_FALSE(loads_empty(value)) << value;
    }
}

TEST(config_store, hand_written_containers_unknown_types_duplicates_roots_and_failed_loads) {
    temp_tree_t dir;
    // A document type makes the load build every element instead of taking scalars' text.
    for (const char* prolog : {"", "<!DOCTYPE Settings>\n"}) {
        SCOPED_TRACE(prolog);
        dir.write(
            "f.xml",
            std::string("<?xml version=\"1.0\"?>\n") + prolog +
                "<Settings>\n"
                "  <!-- a comment -->\n"
                "  <ints type=\"int_vector\"><item>1</item><item>x</item><item>3</item>"
                "<other>9</other></ints>\n"
                "  <map type=\"string_string_map\"><item key=\"a\" value=\"1\"/>"
                "<item key=\"a\" value=\"2\"/><item value=\"no key\"/></map>\n"
                "  <g><Upper type=\"Int\">1</Upper><n type=\"int\">1</n></g>\n"
                "  <g><n type=\"int\">2</n></g>\n"
                "  <v type=\"int\">5<inner type=\"int\">6</inner></v>\n"
                "  <plain>text</plain>\n"
                "  <c type=\"string\">a<![CDATA[<b>]]>&amp;&#233;<!--x--><?p?><i>no</i>z</c>\n"
                "  <r type=\"&#105;nt\">7</r><u type=\"a&amp;b\">1</u>\n"
                "</Settings>\n");
        store_t store;
        watcher_t watcher;
        store.value_changed.connect(&watcher, &watcher_t::on_change);
        ASSERT_TRUE(store.load(dir.path("f.xml")));
        EXPECT_EQ(get<std::vector<int>>(store, L"ints"), (std::vector<int>{1, 0, 3}));
        EXPECT_EQ(get<string_map>(store, L"map"), (string_map{{L"a", L"2"}, {L"", L"no key"}}));
        EXPECT_EQ(get<int>(store, L"g.n"), 2);
        EXPECT_EQ(get<int>(store, L"v"), 5);
        EXPECT_FALSE(store.has_value(L"v.inner"));
        EXPECT_FALSE(store.has_value(L"plain"));
        ASSERT_EQ(store.load_failures.size(), 2u);
        EXPECT_EQ(store.load_failures[0].first, L"g.Upper");
        EXPECT_EQ(store.load_failures[0].second, L"Int");
        EXPECT_EQ(store.load_failures[1].second, L"a&b");
        EXPECT_EQ(get<std::wstring>(store, L"c"), L"a<b>&\u00e9z");
        EXPECT_EQ(get<int>(store, L"r"), 7);
        EXPECT_EQ(names_of(store),
                  (std::vector<std::wstring>{L"c", L"g.n", L"ints", L"map", L"r", L"v"}));

        // One notification per value element; the duplicate carries the earlier value.
        ASSERT_EQ(watcher.changes.size(), 7u);
        const watcher_t::change_t& duplicate = watcher.changes[3];
        EXPECT_EQ(duplicate.key, L"g.n");
        EXPECT_EQ(boost::any_cast<int>(duplicate.previous), 1);
        EXPECT_EQ(boost::any_cast<int>(duplicate.value), 2);
        EXPECT_TRUE(watcher.changes[0].previous.empty());
    }
    store_t store;

    // Values inside an entity's text are read where it is referenced, keyed from inside it.
    dir.write("e.xml", "<!DOCTYPE r [<!ENTITY t '<w type=\"int\">4</w>'>]><r><g>&t;</g></r>");
    ASSERT_TRUE(store.load(dir.path("e.xml")));
    EXPECT_EQ(names_of(store), std::vector<std::wstring>{L"w"});

    // A failed load keeps the values.
    dir.write("bad.xml", "<root><x type=\"int\">1</x>");
    store.set_value(L"kept", 1);
    EXPECT_FALSE(store.load(dir.path("bad.xml")));
    EXPECT_FALSE(store.load(dir.path("missing.xml")));
    EXPECT_TRUE(store.has_value(L"kept"));
    dir.write("good.xml", "<root/>");
    EXPECT_TRUE(store.load(dir.path("good.xml")));
    EXPECT_FALSE(store.has_value(L"kept"));
}

TEST(config_store, unsaveable_keys_and_values_are_reported_and_skipped) {
    temp_tree_t dir;
    store_t store;
    const wchar_t* const bad_keys[] = {L"2nd", L"a b",   L"a/b",  L"a*",   L"a[1]",
                                       L" ",   L"g.x:y", L"g.-x", L"g.@x", L"g.()"};
    for (const wchar_t* key : bad_keys) {
        store.set_value(key, 1);
    }
    // A zero character never reaches a name cut short.
    store.set_value(std::wstring(L"g.a\0b", 5), 1);
    store.set_value(L"control", std::wstring(L"a\x01"
                                             L"b"));
    store.set_value(L"nothing", boost::any());
    store.set_value(L"unknown", std::type_index(typeid(int)));
    store.set_value(L"g.good", 1);
    store_t loaded = reload(store, dir);

    std::vector<std::wstring> reported;
    for (const auto& failure : store.save_failures) {
        reported.push_back(failure.first);
    }
    EXPECT_EQ(reported,
              (std::vector<std::wstring>{L" ", L"2nd", L"a b", L"a*", L"a/b", L"a[1]", L"control",
                                         L"g.()", L"g.-x", L"g.@x", std::wstring(L"g.a\0b", 5),
                                         L"g.x:y", L"nothing", L"unknown"}));
    EXPECT_EQ(names_of(loaded), (std::vector<std::wstring>{L"g.good"}));
}

// A locale that writes 1.234,5 as a German one does.
template <typename C> struct comma_numpunct_t : std::numpunct<C> {
    C do_decimal_point() const override { return ','; }
    C do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(config_store, numbers_keep_six_digits_in_the_classic_form_whatever_the_global_locale) {
    struct restore_t {
        std::locale saved = std::locale();
        ~restore_t() { std::locale::global(saved); }
    } restore;
    std::locale::global(
        std::locale(std::locale(std::locale::classic(), new comma_numpunct_t<wchar_t>),
                    new comma_numpunct_t<char>));
    temp_tree_t dir;
    store_t store;
    store.set_value(L"half", 0.5);
    store.set_value(L"big", 1234567);
    store.set_value(L"d", 0.123456789);
    store.set_value(L"f", 1234567.0f);
    store_t loaded = reload(store, dir);
    const std::string text = dir.read("f.xml");
    for (const char* number : {">0.5<", ">1234567<", ">0.123457<", ">1.23457e+06<"}) {
        EXPECT_NE(text.find(number), std::string::npos) << number;
    }
    EXPECT_EQ(get<double>(loaded, L"half"), 0.5);
    EXPECT_EQ(get<int>(loaded, L"big"), 1234567);
    EXPECT_EQ(get<double>(loaded, L"d"), 0.123457);
    EXPECT_EQ(get<float>(loaded, L"f"), 1.23457e6f);
    dir.write("g.xml", "<root><n type=\"int\">1.234</n></root>");
    ASSERT_TRUE(loaded.load(dir.path("g.xml")));
    EXPECT_TRUE(loaded.get_value(L"n", 0).empty());
}

// A point as <p type="point"><x>1</x><y>2</y></p>, through the typed-property helpers.
struct point_t {
    int x = 0;
    int y = 0;
};
struct point_handler_t : velmor2::handler_base_t {
    boost::any load_value(xmlNode* element) override {
        point_t point;
        point.x = boost::any_cast<int>(get_any_property(element, L"x", L"int"));
        point.y = boost::any_cast<int>(get_any_property(element, L"y", L"int"));
        return point;
    }
    void save_value(const boost::any& value, xmlNode* element) override {
        const point_t point = boost::any_cast<point_t>(value);
        set_any_property(element, L"x", point.x);
        set_any_property(element, L"y", point.y);
    }
    std::wstring get_type_name() const override { return L"point"; }
    const std::type_info& get_type_info() const override { return typeid(point_t); }
};

TEST(config_store, added_handler_extends_types_and_is_shared_by_copies_made_before) {
    temp_tree_t dir;
    store_t store;
    store_t before(store);
    store.add_handler(velmor2::smart_pointer_t<velmor2::handler_base_t>(new point_handler_t));
    store_t after(store);
    store.set_value(L"p", point_t{3, 4});
    ASSERT_TRUE(store.save(dir.path("f.xml")));
    EXPECT_NE(dir.read("f.xml").find(
                  config_test::saved_bytes("<p type=\"point\">\n    <x>3</x>\n    <y>4</y>")),
              std::string::npos);
    ASSERT_TRUE(after.load(dir.path("f.xml")));
    EXPECT_EQ(get<point_t>(after, L"p").y, 4);
    ASSERT_TRUE(before.load(dir.path("f.xml")));
    EXPECT_FALSE(before.has_value(L"p"));
    ASSERT_EQ(before.load_failures.size(), 1u);
    EXPECT_EQ(before.load_failures[0].second, L"point");

    // What the handler throws while libxml2 reads reaches the caller; the values stay.
    dir.write("bad.xml", "<root><q type=\"int\">1</q><p type=\"point\"><x>a</x></p></root>");
    EXPECT_THROW(after.load(dir.path("bad.xml")), boost::bad_any_cast);
    EXPECT_EQ(get<point_t>(after, L"p").y, 4);
    EXPECT_FALSE(after.has_value(L"q"));
}

} // namespace
