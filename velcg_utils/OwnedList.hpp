#pragma once

// Helpers for the owning lists of the model classes: vectors of raw pointers
// whose elements the holder deletes. They keep the holder unchanged when an
// operation fails, so that a refused or interrupted transfer neither leaks
// nor frees an object that is still in use.

#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG::detail {

// Deletes an element that scripts may reach: its references die, and
// accesses in flight end, before any of its members goes.
template <class T>
void deleteOwned(T* element) noexcept {
    if constexpr (std::is_base_of_v<vel::mi::Handle, T>)
        if (element) element->endScriptAccess();
    delete element;
}

// Appends the element and takes its ownership. The pointer is released only
// once the list has room, so a failed append leaves it with the caller.
// A null element raises "VelCG:Model:NullArgument" naming `what`.
template <class T, class U>
T* appendOwned(std::vector<T*>& list, std::unique_ptr<U> element, const char* what) {
    if (!element) throwNullArgument(what);
    list.push_back(element.get());
    return element.release();
}

// Refuses a list that is to replace `current` when it holds a null, the same
// element twice or (unless currentAllowed) an element of `current`, which
// would be deleted before use. `what` names one element ("A region").
template <class T>
void checkReplacement(const std::vector<T*>& current, const std::vector<T*>& given, const std::string& what,
                      bool currentAllowed = false) {
    std::unordered_set<const T*> seen;
    for (const T* element : given) {
        if (!element) throwNullArgument(what);
        if (!seen.insert(element).second) throwInvalidOwnership(what + " is given twice.");
        if (!currentAllowed && std::find(current.begin(), current.end(), element) != current.end())
            throwInvalidOwnership(what +
                                  " of the new list is a current one, which would be deleted before use.");
    }
}

// Deletes every element of the list, in list order, and empties it. An
// element's destructor cannot stop the others: destructors are noexcept, and
// one that throws ends the process before any caller could catch it.
template <class T>
void deleteAll(std::vector<T*>& list) noexcept {
    static_assert(std::is_nothrow_destructible_v<T>, "owned elements must not throw from their destructor");
    for (T* element : list) deleteOwned(element);
    list.clear();
}

// Deletes every element of `current` that is not in `given`, then takes the
// given elements over. The copy is made first, so a failed allocation leaves
// `current` as it was.
template <class T>
void replaceOwned(std::vector<T*>& current, const std::vector<T*>& given) {
    std::vector<T*> replacement(given);
    const std::unordered_set<const T*> kept(given.begin(), given.end());
    for (T* element : current)
        if (!kept.count(element)) deleteOwned(element);
    current.swap(replacement);
}

} // namespace VelCG::detail
