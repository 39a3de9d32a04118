// Every public header of velmor_core.
#pragma once

#include <velmor2/hash.hpp>
#include <velmor2/path.hpp>
#include <velmor2/runtime.hpp>
#include <velmor2/text_file.hpp>
