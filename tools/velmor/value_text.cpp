// Type names and texts of configuration values for the tool's output.
#include "value_text.hpp"

#include <velmor2/path.hpp>

#include <charconv>
#include <list>
#include <map>
#include <type_traits>
#include <vector>

namespace velmor_tool {
namespace {

// A number as configuration files write it: the classic "C" form, "0" or "1" for a bool, six
// significant digits for float and double.
template <typename T> std::wstring format_number(T value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? L"1" : L"0";
    } else {
        char text[64];
        std::to_chars_result end;
        if constexpr (std::is_floating_point_v<T>) {
            end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
        } else {
            end = std::to_chars(text, text + sizeof text, value);
        }
        return std::wstring(text, end.ptr);
    }
}

template <typename T> bool holds(const boost::any& value) {
    return boost::any_cast<T>(&value) != nullptr;
}

template <typename C> std::wstring join(const C& entries) {
    std::wstring text = L"[";
    for (const auto& entry : entries) {
        if (text.size() > 1) {
            text += L", ";
        }
        if constexpr (std::is_same_v<typename C::value_type, int>) {
            text += format_number(entry);
        } else {
            text += L"\"" + entry + L"\"";
        }
    }
    return text + L"]";
}

} // namespace

std::pair<std::wstring, std::wstring> describe_value(const boost::any& value) {
    using string_map = std::map<std::wstring, std::wstring>;
    if (value.empty()) {
        return {L"(empty)", L""};
    }
    if (holds<bool>(value)) {
        return {L"bool", format_number(boost::any_cast<bool>(value))};
    }
    if (holds<int>(value)) {
        return {L"int", format_number(boost::any_cast<int>(value))};
    }
    if (holds<long>(value)) {
        return {L"long", format_number(boost::any_cast<long>(value))};
    }
    if (holds<unsigned long>(value)) {
        return {L"unsigned long", format_number(boost::any_cast<unsigned long>(value))};
    }
    if (holds<unsigned short>(value)) {
        return {L"unsigned short", format_number(boost::any_cast<unsigned short>(value))};
    }
    if (holds<unsigned int>(value)) {
        return {L"unsigned int", format_number(boost::any_cast<unsigned int>(value))};
    }
    if (holds<float>(value)) {
        return {L"float", format_number(boost::any_cast<float>(value))};
    }
    if (holds<double>(value)) {
        return {L"double", format_number(boost::any_cast<double>(value))};
    }
    if (holds<std::wstring>(value)) {
        return {L"string", boost::any_cast<std::wstring>(value)};
    }
    if (holds<std::vector<std::wstring>>(value)) {
        return {L"string_vector", join(boost::any_cast<std::vector<std::wstring>>(value))};
    }
    if (holds<std::list<std::wstring>>(value)) {
        return {L"string_list", join(boost::any_cast<std::list<std::wstring>>(value))};
    }
    if (holds<std::vector<int>>(value)) {
        return {L"int_vector", join(boost::any_cast<std::vector<int>>(value))};
    }
    if (holds<string_map>(value)) {
        std::wstring text = L"{";
        for (const auto& [key, entry] : boost::any_cast<string_map>(value)) {
            text += (text.size() > 1 ? L", \"" : L"\"") + key + L"\": \"" + entry + L"\"";
        }
        return {L"string_string_map", text + L"}"};
    }
    if (holds<velmor2::path_t>(value)) {
        return {L"path_t", boost::any_cast<velmor2::path_t>(value).as_string()};
    }
    return {L"(unknown)", L""};
}

} // namespace velmor_tool
