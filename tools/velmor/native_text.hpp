// Command-line bytes as wide text and back, without losing a byte that is not UTF-8.
#pragma once

#include <string>

namespace velmor_tool {

/// `bytes` as wide text: valid UTF-8 decoded, every other byte kept as U+DC00 plus its value
/// (a lone surrogate, which valid UTF-8 never gives), so that `to_bytes` gives `bytes` back.
std::wstring from_bytes(const std::string& bytes);

/// The bytes `from_bytes` took: UTF-8, with every kept byte written as itself.
std::string to_bytes(const std::wstring& text);

/// True when `text` is Unicode text: no kept byte, no unpaired surrogate.
bool is_unicode(const std::wstring& text);

} // namespace velmor_tool
