#include <velmor2/configuration.hpp>

#include "config/config_files.hpp"
#include "os/xml_file.hpp"
#include "support/temp_tree.hpp"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using velmor_test::temp_tree_t;
namespace os = velmor2::_internal::os;

using doc_ptr = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

doc_ptr parse(const std::string& text) {
    return doc_ptr(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, 0),
                   &xmlFreeDoc);
}

// Exposes the helpers handlers use.
struct probe_t : velmor2::handler_base_t {
    boost::any load_value(xmlNode*) override { return boost::any(); }
    void save_value(const boost::any&, xmlNode*) override {}
    std::wstring get_type_name() const override { return L"probe"; }
    const std::type_info& get_type_info() const override { return typeid(probe_t); }
    using handler_base_t::add_property;
    using handler_base_t::find_nodes;
    using handler_base_t::get_any_property;
    using handler_base_t::get_attribute;
    using handler_base_t::get_node_content;
    using handler_base_t::get_property;
    using handler_base_t::set_any_property;
    using handler_base_t::set_attribute;
    using handler_base_t::set_node_content;
    using handler_base_t::set_property;
};

TEST(xml_document, open_fails_for_missing_empty_and_malformed_files) {
    temp_tree_t dir;
    dir.write("empty.xml", "");
    dir.write("broken.xml", "<root><a></root>");
    for (const char* name : {"missing.xml", "empty.xml", "broken.xml", ""}) {
        EXPECT_EQ(velmor2::open_xml_document(dir.path(name)), nullptr) << name;
    }
}

TEST(xml_document, save_writes_formatted_utf8_with_native_line_ends_and_opens_again) {
    temp_tree_t dir;
    doc_ptr doc = parse("<root><a x=\"1\"><b>t\xC3\xA4</b></a></root>");
    ASSERT_TRUE(doc);
    ASSERT_TRUE(velmor2::save_xml_document(dir.path("out.xml"), doc.get()));
    EXPECT_EQ(dir.read("out.xml"),
              config_test::saved_bytes("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<root>\n"
                                       "  <a x=\"1\">\n"
                                       "    <b>t\xC3\xA4</b>\n"
                                       "  </a>\n"
                                       "</root>\n"));
    doc_ptr again(velmor2::open_xml_document(dir.path("out.xml")), &xmlFreeDoc);
    EXPECT_TRUE(again);
    EXPECT_FALSE(velmor2::save_xml_document(dir.path("out.xml"), nullptr));
    EXPECT_FALSE(velmor2::save_xml_document(dir.path("no/such/dir.xml"), doc.get()));
}

TEST(xml_document, reader_keeps_writers_out_and_save_leaves_content_untouched) {
    temp_tree_t dir;
    const std::string original = "<root><keep/></root>";
    dir.write("f.xml", original);
    doc_ptr doc = parse("<root><new/></root>");
    const int reader = os::open_xml_for_reading(dir.path("f.xml").as_string());
    ASSERT_GE(reader, 0);
    // Readers share.
    doc_ptr shared(velmor2::open_xml_document(dir.path("f.xml")), &xmlFreeDoc);
    EXPECT_TRUE(shared);
    EXPECT_FALSE(velmor2::save_xml_document(dir.path("f.xml"), doc.get()));
    EXPECT_EQ(dir.read("f.xml"), original);
    os::close_xml_file(reader);
    EXPECT_TRUE(velmor2::save_xml_document(dir.path("f.xml"), doc.get()));
}

TEST(handler_helpers, content_properties_and_attributes_and_typed_ones_need_a_store) {
    doc_ptr doc = parse("<root><e a=\"\">x<c>one</c></e><list> <item>1</item> <item>2</item>"
                        "<!-- c --> <item>3</item> <other/></list></root>");
    ASSERT_TRUE(doc);
    probe_t probe;
    xmlNode* root = xmlDocGetRootElement(doc.get());
    xmlNode* e = probe.find_nodes(root, L"e").at(0);

    probe.set_node_content(e, L"y");
    probe.set_node_content(e, L"<&>");
    // Only the text directly below the element counts, not that of child elements.
    EXPECT_EQ(probe.get_node_content(e), L"xy<&>");

    probe.set_property(e, L"c", L"two");
    EXPECT_EQ(probe.get_property(e, L"c"), L"onetwo");
    probe.set_property(e, L"d", L"new");
    EXPECT_EQ(probe.get_property(e, L"d"), L"new");
    probe.add_property(e, L"d", L"second");
    EXPECT_EQ(probe.find_nodes(e, L"d").size(), 2u);
    EXPECT_EQ(probe.get_property(e, L"missing"), L"");

    EXPECT_EQ(probe.get_attribute(e, L"a"), L"");
    EXPECT_EQ(probe.get_attribute(e, L"missing"), L"");
    probe.set_attribute(e, L"a", L"v\u00e4");
    EXPECT_EQ(probe.get_attribute(e, L"a"), L"v\u00e4");

    xmlNode* list = probe.find_nodes(root, L"list").at(0);
    const std::vector<xmlNode*> items = probe.find_nodes(list, L"item");
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(probe.get_node_content(items[2]), L"3");
    EXPECT_TRUE(probe.find_nodes(root, L"][").empty());
    EXPECT_TRUE(probe.find_nodes(root, L"count(*)").empty());
    EXPECT_TRUE(probe.find_nodes(nullptr, L"e").empty());

    // Typed properties need a store.
    EXPECT_TRUE(probe.get_any_property(list, L"item", L"int").empty());
    EXPECT_FALSE(probe.set_any_property(root, L"m", boost::any(1)));
    // The child made for the value stays.
    EXPECT_EQ(probe.find_nodes(root, L"m").size(), 1u);
}

} // namespace
