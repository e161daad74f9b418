#include "velcg/ChildCoderGroupVarInfo.hpp"

// Every operation of ChildCoderGroupVarInfo is inline; this file keeps the
// one-source-per-class layout.
