# Boost is used header-only (Regex, Spirit classic, Any, LexicalCast, Tokenizer, CRC, string algorithms).
find_package(Boost 1.74 REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(Threads REQUIRED)

# A static libxml2 on Windows (the cross-build's own) must not declare its functions as DLL
# imports, and it calls Winsock.
if(WIN32 AND LIBXML2_LIBRARY MATCHES "\\.a$" AND NOT LIBXML2_LIBRARY MATCHES "\\.dll\\.a$")
  set_property(TARGET LibXml2::LibXml2 APPEND PROPERTY INTERFACE_COMPILE_DEFINITIONS LIBXML_STATIC)
  set_property(TARGET LibXml2::LibXml2 APPEND PROPERTY INTERFACE_LINK_LIBRARIES ws2_32)
endif()
