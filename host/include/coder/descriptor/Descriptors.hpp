#pragma once

// Every record kind of the code descriptor store, and what they are built
// of.

#include "coder/ReadTransaction.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/BlockHierarchyMap.hpp"
#include "coder/descriptor/BlockParameter.hpp"
#include "coder/descriptor/CoderGroup.hpp"
#include "coder/descriptor/Creator.hpp"
#include "coder/descriptor/DataInterface.hpp"
#include "coder/descriptor/ExternalInput.hpp"
#include "coder/descriptor/GraphicalBlock.hpp"
#include "coder/descriptor/GraphicalSystem.hpp"
#include "coder/descriptor/IOMap.hpp"
#include "coder/descriptor/IntegerArrayElement.hpp"
#include "coder/descriptor/Model.hpp"
#include "coder/descriptor/ModelParameter.hpp"
#include "coder/descriptor/Object.hpp"
#include "coder/descriptor/Port.hpp"
#include "coder/descriptor/RecordKind.hpp"
#include "coder/descriptor/Region.hpp"
#include "coder/descriptor/RepositoryHelper.hpp"
#include "coder/descriptor/Sequence.hpp"
#include "coder/descriptor/State.hpp"
#include "coder/descriptor/StringListElement.hpp"
#include "coder/descriptor/System.hpp"
#include "coder/descriptor/ToAsyncQueueBlock.hpp"
