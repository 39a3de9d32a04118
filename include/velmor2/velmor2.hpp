// Every public header of velmor_core.
#pragma once

#include <velmor2/configuration.hpp>
#include <velmor2/configuration_files.hpp>
#include <velmor2/file_system.hpp>
#include <velmor2/hash.hpp>
#include <velmor2/path.hpp>
#include <velmor2/runtime.hpp>
#include <velmor2/standard_directories.hpp>
#include <velmor2/text_file.hpp>
#include <velmor2/threading.hpp>
