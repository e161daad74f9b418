#pragma once

// Every public header of the library.
#include "velcg/Export.hpp"
#include "velcg/Features.hpp"
#include "velcg/PlexoModule.hpp"
