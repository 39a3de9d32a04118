// The text of nodes with entity references replaced, in time linear in the text, within a
// budget per document.
#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <string>

namespace velmor2::_internal {

/// Most bytes of text, plus one per reference followed, that entity references may produce in
/// all the reads from one document that a load makes. Past it the load is refused: a file of
/// a few kilobytes can otherwise declare gigabytes of text.
constexpr std::size_t max_expanded_bytes = 10000000;

/// While alive, the reads from `doc` on this thread share one allowance of
/// `max_expanded_bytes`; reads from other documents get a fresh allowance each.
class expansion_budget_t {
  public:
    explicit expansion_budget_t(const xmlDoc* doc);
    ~expansion_budget_t();
    expansion_budget_t(const expansion_budget_t&) = delete;
    expansion_budget_t& operator=(const expansion_budget_t&) = delete;

    /// True once a read ran out of the allowance.
    bool exceeded() const { return ran_out; }

  private:
    friend bool append_list_text(const xmlDoc*, const xmlNode*, std::string&);

    const xmlDoc* doc;
    std::size_t left = max_expanded_bytes;
    bool ran_out = false;
    expansion_budget_t* outer;
};

/// Appends to `out` the text of the node list starting at `first`, as libxml2's
/// `xmlNodeListGetString` with references replaced gives it: text and CDATA, an entity
/// reference replaced by the text of its entity's content, other nodes skipped. False, `out`
/// partly filled, when the document's allowance runs out.
bool append_list_text(const xmlDoc* doc, const xmlNode* first, std::string& out);

/// Sets `out` to the value of the attribute `name` of `element`; false when there is no such
/// attribute or the allowance runs out.
bool attribute_text(const xmlNode* element, const char* name, std::string& out);

} // namespace velmor2::_internal
