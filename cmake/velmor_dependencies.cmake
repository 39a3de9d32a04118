# Boost is used header-only (Spirit classic, Any, LexicalCast, Tokenizer, CRC, string algorithms;
# Regex as the tests' oracle of the wildcard matcher).
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

# ISA-L's CRC-32 engines where they are installed (Debian: libisal-dev); without them, the
# Windows build among others, the library's own engines serve.
option(VELMOR_WITH_ISAL "Use ISA-L for CRC-32 when it is found" ON)
if(VELMOR_WITH_ISAL)
  find_path(VELMOR_ISAL_INCLUDE_DIR isa-l/crc.h)
  find_library(VELMOR_ISAL_LIBRARY isal)
  if(VELMOR_ISAL_INCLUDE_DIR AND VELMOR_ISAL_LIBRARY)
    add_library(velmor_isal INTERFACE IMPORTED)
    set_target_properties(velmor_isal PROPERTIES
      INTERFACE_INCLUDE_DIRECTORIES ${VELMOR_ISAL_INCLUDE_DIR}
      INTERFACE_LINK_LIBRARIES ${VELMOR_ISAL_LIBRARY}
      INTERFACE_COMPILE_DEFINITIONS VELMOR_HAVE_ISAL)
  endif()
endif()
