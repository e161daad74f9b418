#include "korb/Binders.hpp"

#include "korb/Messages.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace korb {

GetterBinder::~GetterBinder() = default;
ValueSink::~ValueSink() = default;

void GetterBinder::read(vel::mi::Handle& object, ValueSink& sink) const { sink.array(getArray(object)); }
SetterBinder::~SetterBinder() = default;
MethodBinder::~MethodBinder() = default;

tuvArrayPtr MethodBinder::call(vel::mi::Handle& object, const std::vector<tuvArrayPtr>& args) const {
    if (args.size() != arity()) detail::wrongArgumentCount(arity(), args.size());
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (!args[i])
            vel::diag::throwError(messages::InvalidArgument,
                                  {std::to_string(i + 1), vel::diag::Diagnostic::fromCatalog(
                                                              messages::TypeMismatch, {kAny, "a null array"})
                                                              .message()});
    }
    return invoke(object, args);
}

namespace detail {

void wrongClass(const vel::mi::Handle& object, const char* nativeType) {
    vel::diag::throwError(messages::WrongClass, {object.getFullyQualifiedKorbTypeName(), nativeType});
}

void wrongArgumentCount(std::size_t expected, std::size_t given) {
    vel::diag::throwError(messages::WrongNumberOfArguments,
                          {std::to_string(expected), std::to_string(given)});
}

void invalidArgument(std::size_t position) {
    try {
        throw;
    } catch (const vel::diag::Exception& e) {
        if (!isConversionFailure(e.identifier())) throw;
        vel::diag::throwError(messages::InvalidArgument,
                              {std::to_string(position + 1), e.diagnostic().message()});
    }
}

} // namespace detail

} // namespace korb
