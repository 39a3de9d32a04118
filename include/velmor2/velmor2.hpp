// Every public header of velmor_core.
#pragma once

#include <velmor2/path.hpp>
#include <velmor2/threading.hpp>
#include <velmor2/configuration.hpp>
