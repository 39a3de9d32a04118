# Boost is used header-only (Regex, Spirit classic, Any, LexicalCast, Tokenizer, CRC, string algorithms).
find_package(Boost 1.74 REQUIRED)
find_package(LibXml2 REQUIRED)
find_package(ZLIB REQUIRED)
find_package(Threads REQUIRED)
