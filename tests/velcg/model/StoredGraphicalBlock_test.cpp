#include "velcg/StoredGraphicalBlock.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "DiagnosticTesting.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/State.hpp"
#include "velcg/StoredDataInterfaceRecord.hpp"
#include "velcg/StoredParameter.hpp"

using namespace VelCG;
using testing_support::diagnosticOf;

namespace {

// One text field of the block, read and written as wide text (the comment
// name, a narrow field, is carried over byte for byte).
struct TextField {
    const char* name;
    std::function<void(StoredGraphicalBlock&, const std::wstring&)> set;
    std::function<std::wstring(StoredGraphicalBlock&)> get;
};

std::vector<TextField> textFields() {
    using B = StoredGraphicalBlock;
    const auto wide = [](const char* name, void (B::*set)(const std::wstring&), auto get) {
        return TextField{name, [set](B& b, const std::wstring& v) { (b.*set)(v); },
                         [get](B& b) { return (b.*get)(); }};
    };
    return {
        wide("name", &B::setName, &B::getName),
        wide("velName", &B::setVelName, &B::getVelName),
        wide("sid", &B::setSID, &B::getSID),
        wide("compactSid", &B::setCompactSID, &B::getCompactSID),
        wide("blockPath", &B::setBlockPath, &B::getBlockPath),
        wide("type", &B::setType, &B::getType),
        wide("description", &B::setDescription, &B::getDescription),
        wide("referencedModelName", &B::setReferencedModelName, &B::getReferencedModelName),
        {"rlsCommentName",
         [](B& b, const std::wstring& v) {
             std::string bytes;
             for (wchar_t c : v) bytes += static_cast<char>(c);
             b.setRLSCommentName(bytes);
         },
         [](B& b) {
             std::wstring out;
             for (char c : b.getRLSCommentName()) out += static_cast<wchar_t>(static_cast<unsigned char>(c));
             return out;
         }},
    };
}

// Text field g holds before one of them is changed: each field its own,
// some of one byte per character, some beyond that (not the narrow one).
std::wstring baseline(const std::vector<TextField>& fields, std::size_t g) {
    return g % 2 || std::string(fields[g].name) == "rlsCommentName"
               ? L"f" + std::to_wstring(g)
               : L"\u20ac" + std::to_wstring(g) + L"\u00e9";
}

TEST(StoredGraphicalBlock, EachTextFieldKeepsItsTextAndLeavesTheOthers) {
    const std::vector<TextField> fields = textFields();
    const std::wstring longMixed = std::wstring(300, L'a') + L"\u4e2d" + std::wstring(300, L'\u00ff');
    const std::vector<std::wstring> wideValues = {
        L"",
        L"Gain1",
        L"caf\u00e9 \u00ff\u0080",
        L"\u0100",
        L"\U0001F600 and \u4e2d",
        std::wstring(L"a\0b", 3),
        std::wstring(1, static_cast<wchar_t>(-1)),
        std::wstring(1, static_cast<wchar_t>(0x7FFFFFFF)),
        longMixed,
    };
    const std::vector<std::wstring> byteValues = {L"", L"rls", std::wstring(L"\u00ff\0\u0080", 3)};

    for (std::size_t f = 0; f < fields.size(); ++f) {
        const bool narrowField = std::string(fields[f].name) == "rlsCommentName";
        for (const std::wstring& value : narrowField ? byteValues : wideValues) {
            SCOPED_TRACE(std::string(fields[f].name) + ", value of length " + std::to_string(value.size()));
            StoredGraphicalBlock b;
            for (std::size_t g = 0; g < fields.size(); ++g) fields[g].set(b, baseline(fields, g));
            fields[f].set(b, value);
            EXPECT_EQ(value, fields[f].get(b));
            fields[f].set(b, L"x");
            EXPECT_EQ(L"x", fields[f].get(b)) << "a value replaces a longer or shorter one";
            fields[f].set(b, value);
            for (std::size_t g = 0; g < fields.size(); ++g)
                if (g != f) {
                    EXPECT_EQ(baseline(fields, g), fields[g].get(b)) << fields[g].name << " changed";
                }
            fields[f].set(b, L"");
            EXPECT_EQ(L"", fields[f].get(b));
        }
    }

    // A block without any text answers empty, and the name constructor sets
    // both names.
    StoredGraphicalBlock empty;
    for (const TextField& field : fields) EXPECT_EQ(L"", field.get(empty)) << field.name;
    StoredGraphicalBlock named(L"G\u4e2d");
    EXPECT_EQ(L"G\u4e2d", named.getName());
    EXPECT_EQ(L"G\u4e2d", named.getVelName());
    EXPECT_EQ(L"", named.getSID());

    // Several fields at once from UTF-8: the others stay, the last text of a
    // field given twice counts, and text that is not UTF-8 sets nothing.
    using Text = StoredGraphicalBlock::TextField;
    const StoredGraphicalBlock::TextValue texts[] = {{Text::Name, "G"},
                                                     {Text::Type, "\xF0\x9F\x98\x80 \xE4\xB8\xAD"},
                                                     {Text::Name, "caf\xC3\xA9"},
                                                     {Text::VelName, ""}};
    named.setTexts(texts, 4);
    EXPECT_EQ(L"caf\u00e9", named.getName());
    EXPECT_EQ(L"\U0001F600 \u4e2d", named.getType());
    EXPECT_EQ(L"", named.getVelName());
    const StoredGraphicalBlock::TextValue bad[] = {{Text::SID, "s"}, {Text::Name, "\xFF"}};
    EXPECT_EQ("i18n:InvalidText", diagnosticOf([&] { named.setTexts(bad, 2); }));
    EXPECT_EQ(L"", named.getSID());
}

// An element that logs its destruction.
template <class Element>
struct Logged : Element {
    template <class... Args>
    Logged(std::vector<std::string>* log, std::string name, Args... args)
        : Element(args...), log_(log), name_(std::move(name)) {}
    ~Logged() override { log_->push_back(name_); }
    std::vector<std::string>* log_;
    std::string name_;
};

TEST(StoredGraphicalBlock, ListsStartEmptyAndTheBlockDeletesTheirElementsInListOrder) {
    std::vector<std::string> log;
    {
        StoredGraphicalBlock b;
        EXPECT_EQ(0, b.getNumFcnCallOutputPorts());

        // Added in an order other than the lists', two to each list, which hold
        // them and no other.
        std::vector<const void*> dworks, controls, parameters, derivatives, discretes, states, inputs,
            outputs;
        for (const char* n : {"1", "2"}) {
            const std::string s = n;
            dworks.push_back(b.addDWork(std::make_unique<Logged<DataInterfaceRecord>>(
                &log, "dwork" + s, new StoredDataInterfaceRecord())));
            controls.push_back(b.addControlInputPort(std::make_unique<Logged<Port>>(&log, "control" + s)));
            parameters.push_back(b.addParameter(
                std::make_unique<Logged<Parameter>>(&log, "parameter" + s, new StoredParameter(L"p"))));
            derivatives.push_back(b.addDerivative(std::make_unique<Logged<State>>(&log, "derivative" + s)));
            discretes.push_back(b.addDiscreteState(std::make_unique<Logged<DataInterfaceRecord>>(
                &log, "discrete" + s, new StoredDataInterfaceRecord())));
            states.push_back(b.addContinuousState(std::make_unique<Logged<State>>(&log, "state" + s)));
            inputs.push_back(b.addDataInputPort(std::make_unique<Logged<Port>>(&log, "input" + s)));
            outputs.push_back(b.addDataOutputPort(std::make_unique<Logged<Port>>(&log, "output" + s)));
        }
        const auto same = [](const auto& list, const std::vector<const void*>& added) {
            return std::vector<const void*>(list.begin(), list.end()) == added;
        };
        EXPECT_TRUE(same(b.getDataInputPorts(), inputs));
        EXPECT_TRUE(same(b.getDataOutputPorts(), outputs));
        EXPECT_TRUE(same(b.getControlInputPorts(), controls));
        EXPECT_TRUE(same(b.getParameters(), parameters));
        EXPECT_TRUE(same(b.getContinuousStates(), states));
        EXPECT_TRUE(same(b.getDerivatives(), derivatives));
        EXPECT_TRUE(same(b.getDiscreteStates(), discretes));
        EXPECT_TRUE(same(b.getDWorks(), dworks));
        EXPECT_EQ(2, b.getNumDataOutputPorts());

        EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { b.addControlInputPort(nullptr); }));
        EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { b.addDataInputPort(nullptr); }));
        EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { b.addParameter(nullptr); }));
        EXPECT_EQ(messages::Model::NullArgument, diagnosticOf([&] { b.addDWork(nullptr); }));
        EXPECT_EQ(2u, b.getControlInputPorts().size()) << "a refused element leaves the list";
        EXPECT_TRUE(log.empty());
    }
    EXPECT_EQ((std::vector<std::string>{"input1", "input2", "output1", "output2", "control1", "control2",
                                        "parameter1", "parameter2", "state1", "state2", "derivative1",
                                        "derivative2", "discrete1", "discrete2", "dwork1", "dwork2"}),
              log);
}

TEST(StoredGraphicalBlock, FunctionCallOutputCountAndFlagsAreKeptApart) {
    StoredGraphicalBlock b;
    for (int count : {3, 0, -5, 0x7FFFFFFF, 0}) {
        b.setNumFcnCallOutputPorts(count);
        EXPECT_EQ(count, b.getNumFcnCallOutputPorts());
    }
    // Each flag on its own: setting one shows in it alone, clearing it
    // leaves the others set.
    using B = StoredGraphicalBlock;
    const struct {
        const char* name;
        void (B::*set)(bool);
        bool (B::*get)() const;
    } flags[] = {{"protected", &B::setIsProtectedModelBlock, &B::getIsProtectedModelBlock},
                 {"reduced", &B::setIsReduced, &B::isReduced},
                 {"inport", &B::setIsInport, &B::isInport},
                 {"outport", &B::setIsOutport, &B::isOutport},
                 {"subsystem", &B::setIsSubsystem, &B::isSubsystem},
                 {"dataStoreMemory", &B::setIsDataStoreMemory, &B::isDataStoreMemory}};
    for (const auto& flag : flags) {
        SCOPED_TRACE(flag.name);
        StoredGraphicalBlock one;
        (one.*flag.set)(true);
        for (const auto& other : flags) EXPECT_EQ(&other == &flag, (one.*other.get)()) << other.name;
        StoredGraphicalBlock allButOne;
        for (const auto& other : flags) (allButOne.*other.set)(true);
        (allButOne.*flag.set)(false);
        for (const auto& other : flags) EXPECT_EQ(&other != &flag, (allButOne.*other.get)()) << other.name;
    }
    const BlockVirtuality outside = static_cast<BlockVirtuality>(7);
    b.setVirtual(outside);
    EXPECT_EQ(outside, b.getVirtual()) << "a value outside the enumeration is kept as given";
}

} // namespace
