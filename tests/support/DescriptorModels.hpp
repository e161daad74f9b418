#pragma once

// Models written into code descriptor stores by the store's own classes:
// a small one of a name and a number of blocks, and one with every kind of
// value for the tests of the store's dumps and of the tool that prints
// them, whose dumps are value_shapes.dump.txt and value_shapes.dump.json
// beside this file.

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

#include "coder/Repository.hpp"
#include "coder/descriptor/Descriptors.hpp"
#include "vel/i18n/Text.hpp"

namespace testing_support {

// Stores a model named `name` with one subsystem of `blocks` blocks "b0", ...
inline void writeModel(coder::Repository& repository, const std::u16string& name, int blocks = 1) {
    using namespace coder::descriptor;
    ModelCreator model(repository);
    model.setModelName(name);
    Model m = model.createModel();
    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    m.setBlockHierarchyMap(map);
    GraphicalSystem root = GraphicalSystemCreator(repository).createGraphicalSystem();
    map.getGraphicalSystems().append(root);
    GraphicalBlockCreator block(repository);
    for (int i = 0; i < blocks; ++i) {
        block.setName(u"b" + vel::i18n::toUString(std::to_string(i)));
        root.getGraphicalBlocks().append(block.createGraphicalBlock());
    }
}

// Opens the file, stores a model in one committed transaction and closes it.
inline void storeModel(const std::filesystem::path& path, const std::u16string& name, int blocks = 1) {
    coder::Repository repository(path);
    coder::Transaction transaction(repository);
    writeModel(repository, name, blocks);
    transaction.commit();
}

// A small model with every kind of JSON value: texts with a quote, control
// characters and non-ASCII UTF-8 (two and four bytes), an absent optional
// field, set and unset references, a reference cycle, integer and real edge
// values (one not finite), and empty and non-empty sequences of records,
// integers and texts.
inline void writeValueShapesModel(coder::Repository& repository) {
    using namespace coder::descriptor;
    coder::Transaction transaction(repository);
    ModelCreator modelCreator(repository);
    modelCreator.setModelName(u"demo");
    modelCreator.setKordelVersion(u"1.0");
    Model model = modelCreator.createModel();

    BlockHierarchyMap map = BlockHierarchyMapCreator(repository).createBlockHierarchyMap();
    model.setBlockHierarchyMap(map);
    GraphicalSystemCreator systemCreator(repository);
    systemCreator.setName(u"demo");
    GraphicalSystem root = systemCreator.createGraphicalSystem();
    map.getGraphicalSystems().append(root);

    GraphicalBlockCreator gainCreator(repository);
    gainCreator.setGraphicalName(u"Gain \"K\" \u00b5\U0001D11E");
    gainCreator.setName(u"Gain");
    gainCreator.setDescription(u"line\tone\nline two\\");
    gainCreator.setNumFcnCallOutputPorts(-1);
    gainCreator.setParentSystemSID(u"demo:0");
    GraphicalBlock gain = gainCreator.createGraphicalBlock();
    root.getGraphicalBlocks().append(gain);

    DataInterfaceCreator dataInterface(repository);
    dataInterface.setIdentifier(u"demo_signals.u");
    PortCreator portCreator(repository);
    portCreator.setGraphicalName(u"Out1");
    portCreator.setConnected(true);
    Port output = portCreator.createPort();
    portCreator.setGraphicalName(u"In1");
    Port input = portCreator.createPort();
    input.setGraphicalSource(output);
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    dataInterface.setIdentifier(u"demo_signals.v");
    input.getDataInterfaces().append(dataInterface.createDataInterface());
    gain.getDataInputPorts().append(input);
    Port trigger = PortCreator(repository).createPort();
    trigger.setGraphicalSource(trigger);
    gain.getControlInputPorts().append(trigger);

    ToAsyncQueueBlockCreator queue(repository);
    queue.setIsEnum(true);
    queue.setFxpSignedness(std::numeric_limits<std::uint32_t>::max());
    queue.setFxpSlopeAdjFactor(0.25);
    queue.setFxpBias(-std::numeric_limits<double>::infinity());
    queue.setSignalSourceUUIDasInteger(std::numeric_limits<std::int64_t>::min());
    queue.setDataTypeId(-3);
    queue.setNVBusOffset(std::numeric_limits<std::int64_t>::max());
    queue.setSignalName(u"bus");
    ToAsyncQueueBlock queued = queue.createToAsyncQueueBlock();
    queued.getEnumLabels().append(StringListElement(u"Off"));
    queued.getEnumLabels().append(StringListElement(u"On"));
    queued.getEnumValues().append(IntegerArrayElement(-1));
    model.getTAQBlocks().append(queued);

    IOMap io = IOMapCreator(repository).createIOMap();
    io.getInportIndices().append(IntegerArrayElement(0));
    io.getInportIndices().append(IntegerArrayElement(-1));
    model.setFPCInfo(io);
    GraphicalBlockCreator plainCreator(repository);
    plainCreator.setIsProtectedModelBlock(true);
    System system = SystemCreator(repository).createSystem();
    system.getGraphicalCallSites().append(plainCreator.createGraphicalBlock());
    model.getSystems().append(system);

    // No record refers to a region; it is stored but not part of the dump.
    RegionCreator(repository).createRegion().getDimensions().append(IntegerArrayElement(1));
    transaction.commit();
}

} // namespace testing_support
