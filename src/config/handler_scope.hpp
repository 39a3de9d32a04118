// Gives a handler its store for the duration of one call.
#pragma once

#include <velmor2/configuration.hpp>

namespace velmor2::_internal {

/// Sets the handler's parent on construction and resets it to null on destruction, also when
/// the call throws.
class handler_scope_t {
  public:
    handler_scope_t(handler_base_t& handler, const advanced_xml_config_t* store);
    ~handler_scope_t();
    handler_scope_t(const handler_scope_t&) = delete;
    handler_scope_t& operator=(const handler_scope_t&) = delete;

  private:
    handler_base_t& handler;
};

} // namespace velmor2::_internal
