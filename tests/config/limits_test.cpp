// Files at the parser's limits and hostile files: a save writes only what a load reads back,
// and a load of a file built to expand entities without end is refused within a memory bound,
// printing nothing.
#include <velmor2/configuration.hpp>

#include "support/temp_tree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

using velmor_test::temp_tree_t;
using string_map = std::map<std::wstring, std::wstring>;
using string_vector = std::vector<std::wstring>;

struct store_t : velmor2::advanced_xml_config_t {
    std::vector<std::wstring> reported;

  protected:
    void on_save_value_failed(const std::wstring& name, const std::type_info&) override {
        reported.push_back(name);
    }
};

// Growth of the peak resident memory since `start_peak()`, in bytes; 0 where the system does
// not tell.
long resident_kib(const char* field) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(field, 0) == 0) {
            return std::stol(line.substr(std::string(field).size()));
        }
    }
    return 0;
}
long start_peak() {
    std::ofstream("/proc/self/clear_refs") << "5";
    return resident_kib("VmRSS:");
}

TEST(config_limits, values_at_the_parser_limits_load_back_and_past_them_are_reported) {
    struct case_t {
        const char* what;
        std::wstring key;
        boost::any value;
        bool saved;
    };
    const std::wstring x10m(10000000, L'x');
    const case_t cases[] = {
        {"name of 50,000 bytes", std::wstring(50000, L'k'), 1, true},
        {"name of 50,001 bytes", std::wstring(50001, L'k'), 1, false},
        {"text of 10,000,000 bytes", L"s1", x10m, true},
        {"text of 10,000,001 bytes", L"s2", x10m + L"x", false},
        {"two-byte text of 10,000,002 bytes", L"s3", std::wstring(5000001, L'\u00e9'), false},
        {"entry of 10,000,001 bytes", L"v", string_vector{L"a", x10m + L"x"}, false},
        // <item key="k" value="..."/> within 9,000,000 bytes, and past them with escapes.
        {"tag of 9,000,000 bytes", L"m1", string_map{{L"k", std::wstring(8999976, L'x')}}, true},
        {"tag of 9,000,001 bytes", L"m2", string_map{{L"k", std::wstring(8999977, L'x')}}, false},
        {"tag of 9,000,006 bytes", L"m3", string_map{{L"k", std::wstring(1499997, L'"')}}, false},
    };
    temp_tree_t dir;
    store_t store;
    for (const case_t& c : cases) {
        store.set_value(c.key, c.value);
    }
    testing::internal::CaptureStderr();
    ASSERT_TRUE(store.save(dir.path("f.xml")));
    store_t loaded;
    ASSERT_TRUE(loaded.load(dir.path("f.xml")));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.what);
        const bool reported =
            std::find(store.reported.begin(), store.reported.end(), c.key) != store.reported.end();
        EXPECT_EQ(reported, !c.saved);
        EXPECT_EQ(loaded.has_value(c.key), c.saved);
    }
    EXPECT_TRUE(loaded.get_value(L"s1", 0).type() == typeid(std::wstring));

    // Written by hand, a text past the limit fails the load, with a document type or without,
    // inside a value, inside an element of the value and outside values; two texts apart
    // each count alone.
    const std::string past(10000001, 'x');
    const std::string half(6000000, ' ');
    const std::string value = "<s type=\"int\">1</s>";
    for (const char* prolog : {"", "<!DOCTYPE root>"}) {
        for (const auto& [body, loads] :
             {std::pair{"<s type=\"string\">" + past + "</s>", false},
              {"<s type=\"string\"><i>" + past + "</i></s>", false},
              {"<g>" + past + value + "</g>", false},
              {value + past, false},
              {half + value + half + "<g>" + half + "</g>", true},
              {half + "<![CDATA[c]]>" + half + "<!--c-->" + half, true}}) {
            SCOPED_TRACE(prolog);
            dir.write("h.xml", std::string(prolog) + "<root>" + body + "</root>");
            EXPECT_EQ(loaded.load(dir.path("h.xml")), loads);
        }
    }
}

// A document type declaring `entities`, and a root holding `body`.
std::string with_entities(const std::string& entities, const std::string& body) {
    return "<?xml version=\"1.0\"?>\n<!DOCTYPE root [\n" + entities + "]>\n<root>" + body +
           "</root>\n";
}

std::string repeat(const std::string& text, std::size_t count) {
    std::string out;
    for (std::size_t i = 0; i < count; ++i) {
        out += text;
    }
    return out;
}

// Exponential nesting: each level references the one below ten times.
std::string laughs(const std::string& leaf) {
    std::string entities = "<!ENTITY l0 \"" + leaf + "\">\n";
    for (int level = 1; level < 10; ++level) {
        entities += "<!ENTITY l" + std::to_string(level) + " \"" +
                    repeat("&l" + std::to_string(level - 1) + ";", 10) + "\">\n";
    }
    return entities;
}

TEST(config_limits, hostile_entities_are_refused_within_a_memory_bound_and_silently) {
    const std::string big = "<!ENTITY e \"" + std::string(50000, 'x') + "\">\n";
    struct case_t {
        const char* what;
        std::string file;
        bool loads;
    };
    const case_t cases[] = {
        {"quadratic in content",
         with_entities(big, "<s type=\"string\">" + repeat("&e;", 50000) + "</s>"), false},
        {"quadratic in attributes",
         with_entities(big, "<m type=\"string_string_map\"><item key=\"k\" value=\"" +
                                repeat("&e;", 50000) + "\"/></m>"),
         false},
        {"quadratic over many values",
         with_entities(big, repeat("<v type=\"string_vector\"><item>&e;</item></v>", 4000)), false},
        {"exponential in content", with_entities(laughs("lol"), "<s type=\"string\">&l9;</s>"),
         false},
        {"exponential in attributes",
         with_entities(laughs("lol"), "<m type=\"string_string_map\"><item key=\"&l9;\"/></m>"),
         false},
        {"exponential of empty text", with_entities(laughs(""), "<s type=\"string\">&l9;</s>"),
         false},
        {"in the type name", with_entities(big, repeat("<s type=\"&e;\">1</s>", 4000)), false},
        // 9,000 references of 1,000 bytes and a byte each stay within the allowance.
        {"within the allowance",
         with_entities("<!ENTITY e \"" + std::string(1000, 'y') + "\">\n",
                       "<s type=\"string\">" + repeat("&e;", 9000) + "</s>"),
         true},
        {"just past the allowance",
         with_entities("<!ENTITY e \"" + std::string(1000, 'y') + "\">\n",
                       "<s type=\"string\">" + repeat("&e;", 9991) + "</s>"),
         false},
    };
    temp_tree_t dir;
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.what);
        dir.write("f.xml", c.file);
        store_t store;
        store.set_value(L"kept", 1);
        const long start = start_peak();
        testing::internal::CaptureStderr();
        EXPECT_EQ(store.load(dir.path("f.xml")), c.loads);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_LT((resident_kib("VmHWM:") - start) * 1024, 256L << 20);
        EXPECT_EQ(store.has_value(L"kept"), !c.loads);
        if (c.loads) {
            EXPECT_EQ(boost::any_cast<std::wstring>(store.get_value(L"s", 0)).size(), 9000000u);
        }
    }
}

} // namespace
